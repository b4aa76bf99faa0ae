/// A picture that equals the one before is encoded once; the packets are the same as when it is encoded again.

#include "ClipModel.h"

#include <tessel/export/Render.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/encode/RepeatingEncoder.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <vector>

namespace tessel::exporting {
namespace {

/// What an encoder gave for one picture.
struct CodedPicture {
    std::int64_t time;
    std::string bytes;

    bool operator==(const CodedPicture&) const = default;
};

/// Frames in which a few rows differ by the frame's shade.
FrameView ShadedFrame(const document::ClipFacts& clip, int shade)
{
    const std::size_t rowBytes = static_cast<std::size_t>(clip.width) * 4;
    auto bytes = std::make_shared<std::vector<std::byte>>(rowBytes * static_cast<std::size_t>(clip.height));
    for (std::size_t i = 0; i < bytes->size(); ++i) {
        (*bytes)[i] = static_cast<std::byte>(i / rowBytes > 40 ? shade * 37 + static_cast<int>(i % 251) : 90);
    }
    return {BR::PixelFormat::BGRA_4444_8u,         clip.width, clip.height, bytes->data(),
            static_cast<std::ptrdiff_t>(rowBytes), bytes};
}

std::vector<CodedPicture> Encode(VideoEncoder& encoder, const VideoPlan& plan, const document::ClipFacts& clip,
                                 const std::vector<int>& shades)
{
    std::vector<CodedPicture> coded;
    const auto take = [&coded](AVPacket& packet) {
        coded.push_back({packet.pts, std::string(reinterpret_cast<const char*>(packet.data),
                                                 static_cast<std::size_t>(packet.size))});
    };
    FrameConverter converter(plan.conversion);
    for (std::size_t i = 0; i < shades.size(); ++i) {
        encoder.Encode(converter.Convert(ShadedFrame(clip, shades[i])), static_cast<std::int64_t>(i), take);
    }
    encoder.Finish(take);
    return coded;
}

TEST(Repeats, PacketsAreThoseOfEncodingEachPicture)
{
    const std::vector<int> shades{1, 1, 1, 2, 3, 3, 1, 1, 4, 4, 4, 4};
    int checked = 0;
    for (const VideoCodec& codec : AllVideoCodecs()) {
        if (!codec.repeats) {
            continue;
        }
        for (const std::uint8_t fieldType : {std::uint8_t{0}, std::uint8_t{2}}) {
            for (const int threads : {1, 4}) {
                // DV takes no other size; DNxHR none that is smaller than the other one.
                const bool isDv = codec.name == "dv";
                document::ClipFacts clip =
                    DescriptionOf(BR::PixelFormat::BGRA_4444_8u, isDv ? 720 : 256, isDv ? 480 : 128);
                clip.fieldType = fieldType;
                const VideoPlan plan = PlanVideo(clip, *ContainerNamed("null"), &codec);
                const std::vector<CodedPicture> each =
                    Encode(*VideoEncoder::Make(plan, threads), plan, clip, shades);
                ASSERT_EQ(each.size(), shades.size()) << codec.name;
                const auto once = EncodeRepeatsOnce(VideoEncoder::Make(plan, threads));
                EXPECT_TRUE(Encode(*once, plan, clip, shades) == each)
                    << codec.name << ", field type " << int{fieldType} << ", " << threads << " threads";
                ++checked;
            }
        }
    }
    EXPECT_EQ(checked, 10 * 4);
}

/// The same picture at every time; counts how often it is asked for it.
class StillSource final : public SignalSource {
public:
    explicit StillSource(bool known) : mClip(DescriptionOf(BR::PixelFormat::BGRA_4444_8u, 64, 48))
    {
        mClip.isStill = known;
    }

    [[nodiscard]] const document::ClipFacts& Description() const override { return mClip; }
    [[nodiscard]] FrameView RenderFrame(std::int64_t /*frame*/) const override
    {
        ++mAsked;
        return ShadedFrame(mClip, 5);
    }
    void RenderAudio(std::int64_t /*position*/, std::uint32_t count,
                     std::span<float* const> channels) const override
    {
        for (float* channel : channels) {
            std::fill_n(channel, count, 0.0F);
        }
    }
    [[nodiscard]] int Asked() const { return mAsked; }

private:
    document::ClipFacts mClip;
    mutable std::atomic<int> mAsked{0};
};

TEST(Repeats, AClipKnownToStandStillIsAskedForOneFrame)
{
    const test::TemporaryFolder folder;
    for (const char* name : {"x.mkv", "x.y4m", "x.mp4"}) {
        const Container* container = ContainerNamed(std::filesystem::path(name).extension().string().substr(1));
        const StillSource known(true);
        const StillSource unknown(false);
        const auto file = folder.Path() / name;
        Render(known, {{.container = container}, file, {0, 50}, 3, nullptr});
        const std::string once = test::ReadFile(file);
        Render(unknown, {{.container = container}, file, {0, 50}, 3, nullptr});
        EXPECT_EQ(test::ReadFile(file), once) << name;
        EXPECT_EQ(known.Asked(), 1) << name;
        EXPECT_EQ(unknown.Asked(), 50) << name;
    }
}

TEST(Repeats, FilesOfASequenceAreWholeWhereTheirPicturesRepeat)
{
    const test::TemporaryFolder folder;
    const StillSource source(false);
    Render(source, {{.container = ContainerNamed("png")}, folder.Path() / "x_%d.png", {0, 7}, 2, nullptr});
    const std::string first = test::ReadFile(folder.Path() / "x_0.png");
    EXPECT_GT(first.size(), 100U);
    for (int frame = 1; frame < 7; ++frame) {
        EXPECT_EQ(test::ReadFile(folder.Path() / ("x_" + std::to_string(frame) + ".png")), first) << frame;
    }
}

} // namespace
} // namespace tessel::exporting
