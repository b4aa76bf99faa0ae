/// Hashes of a render's pictures and samples, in the form of FFmpeg's `framehash` output.
#pragma once

#include <tessel/export/encode/Digest.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tessel::cli {

/// One picture or piece of sound.
struct HashLine {
    int stream = 0;
    std::int64_t start = 0;    ///< in the stream's time base: frames, samples
    std::int64_t duration = 0; ///< likewise
    exporting::Digest digest;
};

/// The hashes of one render, in the order in which it gives them.
class FrameHashes {
public:
    FrameHashes(const exporting::OutputPlan& plan, std::string algorithm);

    void AddPicture(std::int64_t index, const exporting::Digest& digest);
    void AddSound(std::int64_t start, std::int64_t count, const exporting::Digest& digest);

    /// The file: its header, and the lines of both streams in the order of their times. `ffmpeg -f framehash`
    /// gives the same of a lossless file, but for the line that names the program.
    [[nodiscard]] std::string Text() const;

    [[nodiscard]] const std::vector<HashLine>& Lines() const noexcept { return mLines; }

private:
    const exporting::OutputPlan& mPlan;
    std::string mAlgorithm;
    std::vector<HashLine> mLines;
};

/// Hashes that were kept, to be compared with those of a render while it runs.
class ExpectedHashes {
public:
    /// @throws importhost::HostError  for a file that cannot be read or is in another format
    explicit ExpectedHashes(const std::filesystem::path& file);

    /// As FFmpeg calls it: "SHA256".
    [[nodiscard]] const std::string& Algorithm() const noexcept { return mAlgorithm; }

    /// Compares the next line of its stream. @throws importhost::HostError  naming the file and what differs
    void Compare(const HashLine& line, const exporting::OutputPlan& plan);
    /// @throws importhost::HostError  where the file has more lines
    void RequireEnd(const exporting::OutputPlan& plan) const;

private:
    std::filesystem::path mFile;
    std::string mAlgorithm;
    std::vector<std::vector<HashLine>> mStreams;
    std::vector<std::size_t> mCompared; ///< lines of each stream so far
};

} // namespace tessel::cli
