/// Pictures for encoders in the making, and how values are rounded into their codes.
#pragma once

#include "AlignedBuffer.h"
#include "BufferPool.h"
#include "Components.h"
#include "Picture.h"
#include "SourceFrame.h"

#include <cstdint>

namespace tessel::exporting {

/// A picture to fill. Those of v210 are filled as planes, and packed by `FinishPicture`.
[[nodiscard]] Picture StartPicture(PictureLayout target, std::int32_t width, std::int32_t height,
                                   BufferPool& pool);

/// The picture of layout `target` once its components are written.
[[nodiscard]] Picture FinishPicture(PictureLayout target, Picture picture, BufferPool& pool);

/// Rounding of a component from the domain that its floats are in to the target's codes.
/// @param sourceBits  integer codes of so many bits, or 32 for normalised values
[[nodiscard]] Rounding RoundingFor(const LayoutInfo& target, int component, int sourceBits,
                                   bool fullRange) noexcept;

/// Alpha: moved where the sample type is the same, else rescaled; opaque where the source has none. Nothing
/// happens where the target has none.
/// @param scratch  kept from frame to frame
void WriteAlpha(const SourceInfo& info, const ComponentSource& source, const LayoutInfo& target,
                const ComponentTarget& samples, AlignedBuffer& scratch);

} // namespace tessel::exporting
