/// Files to packets: the parts of a movie.
#pragma once

#include "LibavHandles.h"

#include <tessel/export/convert/Picture.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tessel::exporting {

/// How the pictures of a file are coded, as its header or an encoder says.
struct CodedFormat {
    AVCodecID codec = AV_CODEC_ID_NONE;
    int width = 0;
    int height = 0;
    AVPixelFormat pixels = AV_PIX_FMT_NONE; ///< of raw pictures, where it is known
    std::vector<std::byte> headers{};       ///< of the codec, outside its packets

    /// "ffv1, 1920x1080"
    [[nodiscard]] std::string Text() const;
};

/// What the plan's encoder gives. @throws ExportError  as `VideoEncoder::Make`
[[nodiscard]] CodedFormat FormatOf(const VideoPlan& plan);

/// Whether pictures of both can be in one stream.
[[nodiscard]] bool FitTogether(const CodedFormat& left, const CodedFormat& right) noexcept;

/// Reads the packets of a file with one stream of pictures, as they stand in it. Threads: one object, one
/// thread at a time.
class PartReader {
public:
    /// @throws ExportError  naming the file: it cannot be read, is no movie, or holds more than pictures
    explicit PartReader(const std::filesystem::path& path);

    /// Looks into the first pictures. @throws ExportError  naming the file, where there is none
    [[nodiscard]] CodedFormat Format();

    /// Its container's text about the file, by whatever key; empty: none.
    [[nodiscard]] std::string Comment() const;

    /// The next picture's packet, valid until the next call; null: there are no more.
    /// @throws ExportError  naming the file, where it is damaged
    [[nodiscard]] AVPacket* Next();

private:
    std::string mName; ///< in quotation marks
    libav::InputContext mInput;
    libav::Packet mPacket;
};

/// A raw packet of the plan's layout, planes without padding, as a picture. Borrows the packet's bytes.
/// @throws ExportError  where it has too few of them
[[nodiscard]] Picture RawPicture(const AVPacket& packet, const VideoPlan& plan);

} // namespace tessel::exporting
