/// A movie that is decoded while what came before is looked at.
#pragma once

#include "Movie.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <variant>

namespace tessel::verify::read {

/// Decodes on a thread of its own, a few pictures ahead, so that memory stays the same however long the movie
/// is. While it lives, no other code may call the movie's `Next`. The movie's facts are complete, but for
/// warnings, once `Next` has given the first picture; warnings once it has come to the end. Threads: one
/// object, one thread at a time.
class MovieAhead {
public:
    using Item = std::variant<std::monostate, Picture, Sound>;

    /// @param movie  borrowed
    explicit MovieAhead(Movie& movie);
    /// Stops decoding, wherever it is.
    ~MovieAhead();
    MovieAhead(const MovieAhead&) = delete;
    MovieAhead& operator=(const MovieAhead&) = delete;

    /// As `Movie::Next`, also what it throws.
    [[nodiscard]] Item Next();

private:
    void Run();

    Movie& mMovie;
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::deque<Item> mReady;     ///< ends with a monostate
    std::exception_ptr mFailure; ///< thrown behind what is ready
    bool mStops = false;
    std::thread mThread;
};

} // namespace tessel::verify::read
