#include "ClipFixture.h"

#include <cmath>
#include <vector>

namespace {

using namespace importhosttests;

TEST_F(ClipTest, SoundFillsTheClipsChannelsAndZeroesTheOthers)
{
    const Clip clip = Open(Document());
    std::vector<std::vector<float>> buffers(4, std::vector<float>(480, 77.0F));
    std::vector<float*> channels;
    for (auto& buffer : buffers) {
        channels.push_back(buffer.data());
    }
    clip.RenderAudio(0, 480, channels);
    for (std::size_t i = 0; i < 480; ++i) {
        // 1000 Hz at 48000 Hz and 0.25.
        const double expected = 0.25 * std::sin(2.0 * 3.14159265358979 * static_cast<double>(i) / 48.0);
        ASSERT_NEAR(buffers[0][i], expected, 1e-6) << i;
        ASSERT_EQ(buffers[1][i], buffers[0][i]) << i;
        ASSERT_EQ(buffers[2][i], 0.0F) << i;
        ASSERT_EQ(buffers[3][i], 0.0F) << i;
    }
}

TEST_F(ClipTest, SixChannelPatternsHaveRoomOnAClipOfAnyChannelCount)
{
    for (const char* format : {"0", "1", "2", "3"}) {
        for (const char* count : {"0", "-3", "1", "2"}) {
            const Clip clip = Open(
                Document().Set("mToneFormat", "1").Set("mIdentifierFormat", format).Set("mNumChannels", count));
            std::vector<float> buffer(48000, 77.0F);
            std::vector<float> other(48000, 77.0F);
            const std::vector<float*> channels = {buffer.data(), other.data()};
            EXPECT_NO_THROW(clip.RenderAudio(-24000, 48000, channels)) << format << " " << count;
        }
    }
}

TEST_F(ClipTest, MoreThan64ChannelsAreRefused)
{
    const Clip clip = Open(Document().Set("mNumChannels", "65"));
    std::vector<float> buffer(16);
    const std::vector<float*> channels(65, buffer.data());
    EXPECT_THROW(clip.RenderAudio(0, 16, channels), HostError);
}

TEST_F(ClipTest, FewerBuffersThanChannelsAreRefused)
{
    const Clip clip = Open(Document());
    std::vector<float> buffer(16);
    const std::vector<float*> channels(1, buffer.data());
    EXPECT_THROW(clip.RenderAudio(0, 16, channels), HostError);
}

} // namespace
