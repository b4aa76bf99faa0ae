/// A movie's pictures by their number.
#pragma once

#include <tessel/verify/read/Movie.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace tessel::view {

/// Decodes forwards and keeps the last few pictures. Going back further decodes from the beginning again,
/// because containers do not tell which picture a place in a file leads to. Threads: one object, one thread at
/// a time.
class MoviePictures {
public:
    MoviePictures(std::string name, const verify::read::ReadOptions& options);

    /// @param index  0 or more, in presentation order
    /// @return nothing behind the last picture. @throws verify::read::ReadError
    [[nodiscard]] std::optional<verify::read::Picture> Get(std::int64_t index);

    /// Complete once a picture was had.
    [[nodiscard]] const verify::read::MovieFacts& Facts() const noexcept { return mMovie->Facts(); }

private:
    std::string mName;
    verify::read::ReadOptions mOptions;
    std::unique_ptr<verify::read::Movie> mMovie;
    std::deque<verify::read::Picture> mKept; ///< one behind the other
    std::size_t mMostKept = 0;
    std::int64_t mNext = 0; ///< the picture that is decoded next
    bool mIsAtEnd = false;
};

} // namespace tessel::view
