// Numbers survive lossy coding, and a text-recognition program reads them.
#include "PrintedFrame.h"

#include <gtest/gtest.h>
#include <support/Process.h>
#include <support/TemporaryFolder.h>

#include <cmath>
#include <fstream>
#include <limits>

using namespace testsupport;

namespace {

using testsupport::kOrange;
constexpr std::uint32_t kUYVY709 = 0x819;

std::vector<std::int32_t> NumbersToTry(std::int32_t step)
{
    std::vector<std::int32_t> numbers{-1,       -123456,
                                      -9876543, std::numeric_limits<std::int32_t>::max(),
                                      1000000,  std::numeric_limits<std::int32_t>::min(),
                                      0,        888888,
                                      999999,   666666};
    for (std::int32_t number = 0; number <= 99999; number += step) {
        numbers.push_back(number);
    }
    return numbers;
}

/// @param step  between the numbers tried from 0 to 99999
void EncodeAndReadBack(std::uint32_t width, std::uint32_t height, std::int32_t step,
                       const std::string& encoderOptions)
{
    if (!IsInstalled("ffmpeg") || !RunCommand("ffmpeg -hide_banner -encoders | grep -q libx264").succeeded) {
        GTEST_SKIP() << "needs ffmpeg with libx264";
    }
    const test::TemporaryFolder folder;
    const std::vector<std::int32_t> numbers = NumbersToTry(step);
    {
        std::ofstream raw((folder / "in.uyvy").string(), std::ios::binary);
        for (const std::int32_t number : numbers) {
            PrintedFrame frame(kUYVY709, width, height);
            frame.Fill(kOrange);
            ASSERT_EQ(frame.Print(number), 0);
            for (std::uint32_t row = 0; row < height; ++row) {
                raw.write(reinterpret_cast<const char*>(frame.ShownRow(row)),
                          static_cast<std::streamsize>(RowLength(kUYVY709, width)));
            }
        }
    }
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const std::string command = "ffmpeg -v error -y -f rawvideo -pix_fmt uyvy422 -s " + size + " -r 25 -i " +
                                Quoted((folder / "in.uyvy").string()) + " -c:v libx264 -crf 40 " +
                                encoderOptions + " -pix_fmt yuv420p " +
                                Quoted((folder / "lossy.mkv").string()) + " && ffmpeg -v error -y -i " +
                                Quoted((folder / "lossy.mkv").string()) + " -f rawvideo -pix_fmt gray " +
                                Quoted((folder / "out.gray").string());
    ASSERT_TRUE(RunCommand(command).succeeded) << command;

    std::ifstream decoded((folder / "out.gray").string(), std::ios::binary);
    NumberReader reader;
    for (const std::int32_t number : numbers) {
        std::vector<char> gray(std::size_t{width} * height);
        ASSERT_TRUE(decoded.read(gray.data(), static_cast<std::streamsize>(gray.size())));
        const BrightnessPicture picture{
            .width = width, .height = height, .at = [&](std::uint32_t x, std::uint32_t y) {
                return static_cast<double>(static_cast<unsigned char>(gray[std::size_t{y} * width + x]));
            }};
        EXPECT_EQ(reader.Read(picture), number) << size << " after x264 at CRF 40";
    }
}

TEST(NumberThroughCodec, IsReadBackAfterH264AtCrf40FromThumbnailPictures)
{
    // Intra pictures only: at this quality, predicted pictures keep pixels of the previous number where the
    // digits are 13 pixels high.
    EncodeAndReadBack(160, 106, 1009, "-g 1");
}

TEST(NumberThroughCodec, IsReadBackAfterH264AtCrf40FromAMovieInStandardDefinition)
{
    EncodeAndReadBack(720, 480, 1009, "");
}

TEST(NumberThroughCodec, IsReadBackAfterH264AtCrf40FromAMovieInUltraHighDefinition)
{
    EncodeAndReadBack(3840, 2160, 19997, "-preset ultrafast");
}

/// The plate as dark text on white with digits about 40 pixels high, as text recognition likes it.
void WritePlate(const std::string& file, PrintedFrame& frame, const pixmill::NumberLayout& layout)
{
    const BrightnessPicture picture = frame.Picture();
    const double zoom = 40.0 / layout.digitHeight;
    const auto width = static_cast<std::uint32_t>(layout.width * zoom);
    const auto height = static_cast<std::uint32_t>(layout.height * zoom);
    std::ofstream pgm(file, std::ios::binary);
    pgm << "P5\n" << width << ' ' << height << "\n255\n";
    const auto at = [&](std::uint32_t x, std::uint32_t y) {
        return picture.at(layout.left + std::min(x, layout.width - 1),
                          layout.top + std::min(y, layout.height - 1));
    };
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const double sourceX = std::max(0.0, (x + 0.5) / zoom - 0.5);
            const double sourceY = std::max(0.0, (y + 0.5) / zoom - 0.5);
            const auto left = static_cast<std::uint32_t>(sourceX), top = static_cast<std::uint32_t>(sourceY);
            const double right = sourceX - left, below = sourceY - top;
            const double value = (at(left, top) * (1 - right) + at(left + 1, top) * right) * (1 - below) +
                                 (at(left, top + 1) * (1 - right) + at(left + 1, top + 1) * right) * below;
            pgm.put(static_cast<char>(255 - static_cast<int>(value)));
        }
    }
}

TEST(NumberThroughCodec, TesseractReadsTheNumbersToo)
{
    if (!IsInstalled("tesseract")) {
        GTEST_SKIP() << "needs tesseract";
    }
    const test::TemporaryFolder folder;
    for (const auto& [width, height] :
         {std::pair{160U, 106U}, std::pair{720U, 480U}, std::pair{3840U, 2160U}}) {
        for (const std::int32_t number : {0, 123456, 789012, 345678, 99999, 468}) {
            PrintedFrame frame(pixmill::kBGRA8, width, height);
            frame.Fill(kOrange);
            ASSERT_EQ(frame.Print(number), 0);
            WritePlate((folder / "plate.pgm").string(), frame,
                       pixmill::LayOutNumber(width, height, 6, 0.12F, 0.05F, 0.05F));
            const CommandResult read =
                RunCommand("OMP_THREAD_LIMIT=1 tesseract " + Quoted((folder / "plate.pgm").string()) +
                           " stdout --psm 7 -c tessedit_char_whitelist=0123456789 2>/dev/null");
            ASSERT_TRUE(read.succeeded);
            std::string expected = std::to_string(number);
            expected.insert(0, 6 - expected.size(), '0');
            EXPECT_EQ(read.output.substr(0, read.output.find_first_of(" \n")), expected)
                << width << "x" << height;
        }
    }
}

} // namespace
