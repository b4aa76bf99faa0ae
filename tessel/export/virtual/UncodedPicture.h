/// Pictures as the bytes of a packet, for the codecs that need no encoder.
#pragma once

#include <tessel/export/convert/Picture.h>
#include <tessel/export/plan/VideoPlan.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tessel::exporting {

/// How the pictures of a plan become packets, and what QuickTime says of them.
struct UncodedPicture {
    std::string_view type;      ///< four characters
    std::int64_t bytes = 0;     ///< of every picture
    int depth = 0;              ///< bits of a pixel, as QuickTime counts them
    bool isPackedYcbcr = false; ///< has a sample description of version 2
};

/// @throws ExportError  for a codec that needs an encoder
[[nodiscard]] UncodedPicture UncodedPictureOf(const VideoPlan& plan);

/// @param bytes  as many as `UncodedPictureOf` says
void WriteUncoded(const VideoPlan& plan, const Picture& picture, std::span<std::byte> bytes) noexcept;

} // namespace tessel::exporting
