// FFmpeg's decoders read the right codes from our v210, UYVY and YUYV rows.
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <gtest/gtest.h>
#include <support/PaintableFormats.h>
#include <support/Process.h>
#include <support/ReferenceColor.h>
#include <support/TemporaryFolder.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <random>

using namespace testsupport;

namespace {

constexpr std::uint32_t kPictureWidth = 720;
constexpr std::uint32_t kPictureHeight = 480;
constexpr std::uint32_t kPaddedV210Row = 1920; // whole 128-byte blocks of 48 pixels

ReferenceColor RowColor(std::uint32_t row)
{
    std::mt19937 random(row);
    std::uniform_real_distribution<float> component(-.25F, 1.25F);
    return {component(random), component(random), component(random), 1};
}

/// A picture in which every row has a colour of its own, as bytes of a raw file.
std::string Picture(std::uint32_t code, std::size_t rowBytes)
{
    std::string bytes(rowBytes * kPictureHeight, '\0');
    for (std::uint32_t row = 0; row < kPictureHeight; ++row) {
        const ReferenceColor color = RowColor(row);
        const std::array<float, 4> bgra = {color.blue, color.green, color.red, color.alpha};
        EXPECT_EQ(PM_FillWithColor(bytes.data() + row * rowBytes, static_cast<std::int32_t>(rowBytes),
                                   kPictureWidth, 1, code, bgra.data(), 260),
                  0);
    }
    return bytes;
}

/// Decodes raw bytes into planes: Y, then Cb and Cr of half the width.
std::string Decoded(const std::string& bytes, const std::string& input, const std::string& planes)
{
    const test::TemporaryFolder folder;
    const std::filesystem::path path = folder / "picture.raw";
    std::ofstream(path, std::ios::binary) << bytes;
    const CommandResult result = RunCommand("ffmpeg -v error -nostdin " + input + " -video_size 720x480 -i " +
                                            Quoted(path.string()) + " -f rawvideo -pix_fmt " + planes + " -");
    EXPECT_TRUE(result.succeeded);
    return result.output;
}

void ExpectPlanes(const std::string& planes, const std::string& format, std::size_t sampleBytes)
{
    ASSERT_EQ(planes.size(), std::size_t{2} * kPictureWidth * kPictureHeight * sampleBytes);
    const auto sample = [&](std::size_t index) {
        const auto byte = [&](std::size_t at) { return std::uint32_t{static_cast<unsigned char>(planes[at])}; };
        return sampleBytes == 1 ? byte(index) : byte(index * 2) | byte(index * 2 + 1) << 8;
    };
    const ReferenceFormat reference(format);
    const std::size_t chroma = kPictureWidth / 2;
    for (std::uint32_t row = 0; row < kPictureHeight; ++row) {
        const std::array<std::uint32_t, 3> codes = {reference.Code('Y', RowColor(row)),
                                                    reference.Code('U', RowColor(row)),
                                                    reference.Code('V', RowColor(row))};
        for (std::size_t x = 0; x < kPictureWidth; ++x) {
            ASSERT_EQ(sample(row * std::size_t{kPictureWidth} + x), codes[0])
                << format << ", luma, row " << row;
        }
        for (std::size_t x = 0; x < chroma; ++x) {
            const std::size_t blue = std::size_t{kPictureWidth} * kPictureHeight + row * chroma + x;
            ASSERT_EQ(sample(blue), codes[1]) << format << ", Cb, row " << row;
            ASSERT_EQ(sample(blue + chroma * kPictureHeight), codes[2]) << format << ", Cr, row " << row;
        }
    }
}

class Decoding : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!IsInstalled("ffmpeg")) {
            GTEST_SKIP() << "ffmpeg is not installed";
        }
    }
};

TEST_F(Decoding, V210RowsHoldTheRightNumbers)
{
    for (const auto& [code, name] : {std::pair{0x211U, "V210_422_10u_601"}, {0xA11U, "V210_422_10u_709"}}) {
        ExpectPlanes(Decoded(Picture(code, kPaddedV210Row), "-f v210", "yuv422p10le"), name, 2);
    }
}

TEST_F(Decoding, UyvyAndYuyvRowsHoldTheRightNumbers)
{
    const std::size_t rowBytes = std::size_t{kPictureWidth} * 2;
    ExpectPlanes(Decoded(Picture(0x019, rowBytes), "-f rawvideo -pixel_format uyvy422", "yuv422p"),
                 "UYVY_422_8u_601", 1);
    ExpectPlanes(Decoded(Picture(0x819, rowBytes), "-f rawvideo -pixel_format uyvy422", "yuv422p"),
                 "UYVY_422_8u_709", 1);
    ExpectPlanes(Decoded(Picture(0x01B, rowBytes), "-f rawvideo -pixel_format yuyv422", "yuv422p"),
                 "YUYV_422_8u_601", 1);
    ExpectPlanes(Decoded(Picture(0x81B, rowBytes), "-f rawvideo -pixel_format yuyv422", "yuv422p"),
                 "YUYV_422_8u_709", 1);
}

} // namespace
