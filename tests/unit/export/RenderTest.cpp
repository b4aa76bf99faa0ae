#include "ClipModel.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/Render.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <stdexcept>
#include <string>

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;

TEST(Render, Y4mHoldsEveryFrameOnceInOrderForAnyNumberOfThreads)
{
    const test::TemporaryFolder folder;
    const CountingSource source(DescriptionOf(BR::PixelFormat::BGRX_4444_8u));
    for (const int threads : {1, 3, 8}) {
        const fs::path path = folder.Path() / "x.y4m";
        Render(source, {{.container = ContainerNamed("y4m")}, path, {10, 50}, threads, nullptr});
        const std::string file = test::ReadFile(path);
        // A line of header; then for each frame "FRAME\n" and three planes.
        constexpr std::size_t kPlane = 16 * 8;
        std::size_t at = file.find('\n') + 1;
        EXPECT_NE(file.substr(0, at).find("F30000:1001"), std::string::npos) << file.substr(0, at);
        for (int frame = 10; frame < 60; ++frame, at += 6 + 3 * kPlane) {
            ASSERT_EQ(file.substr(at, 6), "FRAME\n") << frame;
            // A grey of code g has luma 16 + 219 g / 255.
            const auto luma = static_cast<char>(static_cast<int>(16 + 219 * frame / 255.0 + 0.5));
            ASSERT_EQ(file.substr(at + 6, kPlane), std::string(kPlane, luma)) << frame;
            ASSERT_EQ(file.substr(at + 6 + kPlane, 2 * kPlane), std::string(2 * kPlane, '\x80')) << frame;
        }
        EXPECT_EQ(at, file.size());
    }
}

TEST(Render, SoundOfARangeStartsAndEndsWithItsFrames)
{
    const test::TemporaryFolder folder;
    const CountingSource source(DescriptionOf(BR::PixelFormat::BGRX_4444_8u));
    const fs::path path = folder.Path() / "x.wav";
    Render(source, {{.container = ContainerNamed("wav"), .audioCodec = AudioCodecNamed("pcmfloat")},
                    path,
                    {7, 1},
                    1,
                    nullptr});
    const std::string file = test::ReadFile(path);
    const std::size_t data = file.find("data") + 8;
    // Frame 7 is samples 11211 to 12812, see the block test.
    ASSERT_EQ(file.size() - data, (12813U - 11211U) * 2 * sizeof(float));
    for (std::size_t i = 0; i < 12813 - 11211; ++i) {
        for (std::size_t channel = 0; channel < 2; ++channel) {
            float sample = 0.0F;
            std::memcpy(&sample, file.data() + data + (i * 2 + channel) * sizeof sample, sizeof sample);
            ASSERT_EQ(sample, CountingSource::Sample(11211 + static_cast<std::int64_t>(i), channel));
        }
    }
}

/// Fails at one frame.
class FailingSource final : public SignalSource {
public:
    explicit FailingSource(const SignalSource& source) : mSource(source) {}
    [[nodiscard]] const document::ClipFacts& Description() const override { return mSource.Description(); }
    [[nodiscard]] FrameView RenderFrame(std::int64_t frame) const override
    {
        if (frame == 20) {
            throw std::runtime_error("frame 20");
        }
        return mSource.RenderFrame(frame);
    }
    void RenderAudio(std::int64_t position, std::uint32_t count,
                     std::span<float* const> channels) const override
    {
        mSource.RenderAudio(position, count, channels);
    }

private:
    const SignalSource& mSource;
};

TEST(Render, FailureHalfWayLeavesNothing)
{
    const CountingSource counting(DescriptionOf(BR::PixelFormat::BGRX_4444_8u));
    const FailingSource source(counting);
    for (const char* name : {"x.mkv", "x.mov", "x.y4m", "x_%d.png"}) {
        const test::TemporaryFolder folder;
        const Container* container = ContainerNamed(fs::path(name).extension().string().substr(1));
        EXPECT_THROW(Render(source, {{.container = container}, folder.Path() / name, {0, 100}, 2, nullptr}),
                     std::runtime_error);
        EXPECT_TRUE(fs::is_empty(folder.Path())) << name;
    }
}

TEST(ChooseFrames, GivesTheWholeClipUnlessToldOtherwise)
{
    auto clip = DescriptionOf(BR::PixelFormat::BGRA_4444_8u);
    clip.frameCount = 10;
    const auto chosen = [&](auto first, auto last, auto count) {
        const FrameRange range = ChooseFrames(clip, first, last, count);
        return std::pair(range.first, range.count);
    };
    const std::optional<std::int64_t> none;
    const auto number = [](std::int64_t value) { return std::optional(value); };
    EXPECT_EQ(chosen(none, none, none), std::pair(std::int64_t{0}, std::int64_t{10}));
    EXPECT_EQ(chosen(number(3), none, none), std::pair(std::int64_t{3}, std::int64_t{7}));
    EXPECT_EQ(chosen(number(3), number(3), none), std::pair(std::int64_t{3}, std::int64_t{1}));
    EXPECT_EQ(chosen(none, none, number(4)), std::pair(std::int64_t{0}, std::int64_t{4}));
    constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    for (const auto& [first, last, count] :
         {std::tuple{number(10), none, none}, std::tuple{number(-1), none, none},
          std::tuple{none, number(10), none}, std::tuple{number(5), number(4), none},
          std::tuple{number(5), none, number(6)}, std::tuple{none, number(kHighest), none},
          std::tuple{none, number(kLowest), none}, std::tuple{number(9), none, number(kHighest)},
          std::tuple{none, none, number(0)}}) {
        EXPECT_THROW(static_cast<void>(ChooseFrames(clip, first, last, count)), ExportError);
    }
}

} // namespace
} // namespace tessel::exporting
