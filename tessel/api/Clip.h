/// A clip as the C interface serves it.
#pragma once

#include "tessel.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/AudioBlocks.h>
#include <tessel/export/SignalSource.h>
#include <tessel/export/convert/Conversion.h>
#include <tessel/export/convert/FrameConverter.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tessel::api {

/// Stays where it is made. Threads: [thread-safe]. Its errors are those of `tessel.h`, as exceptions.
class Clip {
public:
    /// @param standIn  the name in messages of the file that stands in for a document in memory; else empty
    Clip(document::OpenedClip opened, std::string standIn);
    ~Clip() = default;
    Clip(const Clip&) = delete;
    Clip& operator=(const Clip&) = delete;

    [[nodiscard]] const std::string& Warning() const noexcept { return mWarning; }
    [[nodiscard]] const std::string& StandIn() const noexcept { return mStandIn; }
    [[nodiscard]] const exporting::SignalSource& Source() const noexcept { return mSource; }
    [[nodiscard]] tessel_description Describe() const noexcept;
    [[nodiscard]] tessel_picture DescribePicture(tessel_layout layout);
    void Frame(std::int64_t frame, tessel_layout layout, void* const* planes, const std::ptrdiff_t* strides);
    void Samples(std::int64_t start, std::size_t count, std::span<float* const> channels);

private:
    /// A converter serves one thread at a time: those that are free wait here, by the layout they make.
    using Converters =
        std::map<exporting::PictureLayout, std::vector<std::unique_ptr<exporting::FrameConverter>>>;

    /// What is known of the clip, with the format of its frames, which one of them is asked for.
    [[nodiscard]] document::ClipFacts FactsWithFormat();
    [[nodiscard]] exporting::Conversion ConversionTo(exporting::PictureLayout layout);
    /// The caller's planes where the plug-in can paint into them; else without memory.
    [[nodiscard]] importhost::FrameDestination DestinationOf(tessel_layout layout, void* const* planes,
                                                             const std::ptrdiff_t* strides);
    [[nodiscard]] exporting::Picture Convert(const exporting::FrameView& view, exporting::PictureLayout layout);

    document::OpenedClip mOpened;
    std::string mStandIn;
    std::string mWarning;
    exporting::ClipSource mSource;

    std::mutex mFormatMutex;
    BR::PixelFormat mFrameFormat = BR::PixelFormat::Unknown; ///< until a frame was asked
    std::mutex mConvertersMutex;
    Converters mConverters;

    std::mutex mSoundMutex;
    std::optional<exporting::AudioBlockReader> mSound;
};

} // namespace tessel::api
