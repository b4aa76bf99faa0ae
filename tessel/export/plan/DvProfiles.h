/// The eight DV formats: what the tape formats (IEC 61834, SMPTE 314M, SMPTE 370M) allow.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <tessel/document/OpenClip.h>
#include <tessel/export/convert/Picture.h>

#include <string_view>

namespace tessel::exporting {

struct DvProfile {
    BR::PixelFormat format;
    std::string_view name;
    std::int32_t width;
    std::int32_t height;
    std::int32_t rateNumerator; ///< frames per second
    std::int32_t rateDenominator;
    PictureLayout layout;
    Matrix matrix; ///< of its samples, which are limited range
};

/// The profile that a pixel format names; null for formats that are not DV.
[[nodiscard]] const DvProfile* DvProfileOf(BR::PixelFormat format) noexcept;

/// The profile for a clip that is to become DV: the one that its format names, or for other formats the one
/// with the clip's size and rate that keeps the most (50 Mb/s before 25).
/// @throws ExportError  where size or rate do not fit; the line says which would.
[[nodiscard]] const DvProfile& DvProfileFor(const document::ClipFacts& clip);

} // namespace tessel::exporting
