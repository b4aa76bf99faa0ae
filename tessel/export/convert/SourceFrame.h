/// The samples of frames as the plug-in paints them, component by component.
#pragma once

#include "Components.h"
#include "FrameView.h"
#include "Picture.h"
#include "PixelKind.h"

#include <kestrel/brindle/PixelFormat.h>

#include <array>
#include <cstdint>

namespace tessel::exporting {

/// What a frame's samples are, as a layout would say it.
struct SourceInfo {
    PixelKind kind;
    SampleType type = SampleType::U8;
    int bits = 8;
    int chromaShiftX = 0;
    std::array<ComponentPlace, 4> components;
};

/// @throws ExportError  for planar and compressed formats, which frames never have.
[[nodiscard]] SourceInfo SourceInfoOf(BR::PixelFormat format);

/// Components of frames of one geometry; v210 is unpacked into planes first.
/// Threads: one object, one thread at a time.
class SourceReader {
public:
    SourceReader(const SourceInfo& info, std::int32_t width, std::int32_t height);

    /// Makes `frame` the current one. Borrowed until the next call.
    void Take(const FrameView& frame) noexcept;

    /// @param index  0..3: R, G, B or Y, Cb, Cr, then alpha. Without samples where the frame has none.
    [[nodiscard]] ComponentSource Component(int index) const noexcept;

private:
    SourceInfo mInfo;
    Picture mUnpacked;
    const FrameView* mFrame = nullptr;
};

} // namespace tessel::exporting
