/// How FFmpeg's libraries are told which movie to open.
#pragma once

#include <string>

namespace tessel::verify::read {

struct MovieAddress {
    std::string url;         ///< for avformat_open_input
    bool isSequence = false; ///< pictures with a number in their name
};

/// The address of a movie as a person names it: a file of any name, a pattern such as `out/%06d.png`, `-` for
/// standard input, or a protocol that FFmpeg knows. FFmpeg alone would take a file's colon for the end of a
/// protocol's name, and each percent sign for a number. Threads: [any-thread].
[[nodiscard]] MovieAddress AddressOf(const std::string& name);

} // namespace tessel::verify::read
