/// Packets to one file.
#pragma once

#include <tessel/export/convert/Picture.h>
#include <tessel/export/files/OutputFile.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

struct AVPacket;

namespace tessel::exporting {

/// How much will be written, at most: the room for an index at the file's beginning depends on it.
struct MovieExtent {
    std::int64_t pictures = 0;
    std::int64_t samples = 0;
};

/// A file, or standard output for `-`; nothing that a person sees for a container that writes nothing.
[[nodiscard]] OutputFile OpenTarget(const std::filesystem::path& target, const Container& container);

/// Writes pictures and samples into one file of any container but sequences. Threads: one object, one thread
/// at a time.
class MovieWriter {
public:
    /// Opens encoders and muxer and writes the header.
    /// @param file         where to; committed by the caller
    /// @param threadCount  for codecs
    /// @throws ExportError; RequestError  for a pipe where the container needs to seek
    MovieWriter(const OutputPlan& plan, OutputFile file, int threadCount, const MovieExtent& extent);
    ~MovieWriter();
    MovieWriter(const MovieWriter&) = delete;
    MovieWriter& operator=(const MovieWriter&) = delete;

    /// Pictures in order, from 0 on.
    void WritePicture(const Picture& picture, std::int64_t index);
    /// A picture that is coded already, as the plan's encoder codes it; takes the packet's content. Either all
    /// pictures come so or none.
    void WritePacket(AVPacket& packet, std::int64_t index);
    /// As `AudioEncoder::Encode`.
    void WriteSamples(const std::vector<const float*>& channels, std::int64_t count, std::int64_t clipPosition);
    /// Writes what is left and gives the file its name.
    /// @return the file's size in bytes
    std::int64_t Finish();

private:
    struct State;
    std::unique_ptr<State> mState;
};

} // namespace tessel::exporting
