#include "GreyPicture.h"

#include <kestrel/pixmill/PrintNumber.h>
#include <tessel/verify/align/NumberReader.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

namespace tessel::verify::align {
namespace {

constexpr int kFrameWidth = 640;
constexpr int kFrameHeight = 360;
constexpr std::uint32_t kBgra8 = 0x0C; // the image library's code

/// A picture with a ramp and a number printed on it by the host's own printer.
GreyPicture Printed(std::int32_t number)
{
    std::vector<std::uint8_t> bgra(static_cast<std::size_t>(kFrameWidth) * kFrameHeight * 4, 90);
    for (int y = 0; y < kFrameHeight; ++y) {
        for (int x = 0; x < kFrameWidth * 4; ++x) {
            bgra[static_cast<std::size_t>(y * kFrameWidth * 4 + x)] =
                static_cast<std::uint8_t>(40 + y * 160 / kFrameHeight);
        }
    }
    constexpr float kPosition[] = {0.05F, 0.05F};
    EXPECT_EQ(PM_PrintNum(bgra.data(), kFrameWidth * 4, kBgra8, kFrameWidth, kFrameHeight, number, 0.12F,
                          kPosition, true),
              0);
    GreyPicture picture{kFrameWidth, kFrameHeight, {}};
    for (std::size_t at = 1; at < bgra.size(); at += 4) {
        picture.samples.push_back(bgra[at]);
    }
    return picture;
}

/// Each sample taken from a place of another picture, between its samples.
GreyPicture Moved(const GreyPicture& from, int width, int height, const std::function<Point(Point)>& back)
{
    GreyPicture to{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Point at = back({x + 0.5, y + 0.5});
            const double sx = at.x - 0.5;
            const double sy = at.y - 0.5;
            const int left = static_cast<int>(std::floor(sx));
            const int top = static_cast<int>(std::floor(sy));
            const auto sample = [&](int column, int row) {
                return column < 0 || row < 0 || column >= from.width || row >= from.height
                           ? 0.0
                           : static_cast<double>(
                                 from.samples[static_cast<std::size_t>(row * from.width + column)]);
            };
            const double fx = sx - left;
            const double fy = sy - top;
            const double value = (sample(left, top) * (1 - fx) + sample(left + 1, top) * fx) * (1 - fy) +
                                 (sample(left, top + 1) * (1 - fx) + sample(left + 1, top + 1) * fx) * fy;
            to.samples.push_back(static_cast<std::uint8_t>(std::lround(value)));
        }
    }
    return to;
}

Placement Plain()
{
    Placement placement;
    placement.clipWidth = kFrameWidth;
    placement.clipHeight = kFrameHeight;
    return placement;
}

TEST(NumberReader, ReadsEveryDigitInEveryPlace)
{
    const NumberReader reader(kFrameWidth, kFrameHeight);
    for (const std::int32_t number :
         {0, 1, 12, 123456, 234567, 345678, 456789, 567890, 678901, 789012, 890123, 901234}) {
        const Reading reading = reader.Read(Printed(number).View(), Plain());
        EXPECT_EQ(reading.number, number);
        EXPECT_TRUE(reading.IsReadable());
        EXPECT_GT(reading.likeness, 0.97) << number;
    }
}

TEST(NumberReader, LevelsGainsAndCurvesDoNotMatter)
{
    const NumberReader reader(kFrameWidth, kFrameHeight);
    const std::function<double(double)> kChanges[] = {[](double v) { return 16 + v * 219 / 255; },
                                                      [](double v) { return 100 + v * 0.2; },
                                                      [](double v) { return 255 * std::pow(v / 255, 2.4); },
                                                      [](double v) { return 255 * std::pow(v / 255, 0.45); }};
    for (const auto& change : kChanges) {
        GreyPicture picture = Printed(678905);
        for (std::uint8_t& sample : picture.samples) {
            sample = static_cast<std::uint8_t>(std::lround(change(sample)));
        }
        const Reading reading = reader.Read(picture.View(), Plain());
        EXPECT_EQ(reading.number, 678905);
        EXPECT_TRUE(reading.IsReadable());
    }
}

TEST(NumberReader, ReadsThroughNoiseAsStrongAsAThirdOfTheContrast)
{
    const NumberReader reader(kFrameWidth, kFrameHeight);
    std::mt19937 random(1); // NOLINT: the same noise each time
    std::normal_distribution<double> noise(0, 70);
    for (const std::int32_t number : {680953, 838680, 112211}) {
        GreyPicture picture = Printed(number);
        for (std::uint8_t& sample : picture.samples) {
            sample = static_cast<std::uint8_t>(std::clamp(sample + noise(random), 0.0, 255.0));
        }
        EXPECT_EQ(reader.Read(picture.View(), Plain()).number, number);
    }
}

TEST(NumberReader, FindsNoNumberWhereThereIsNone)
{
    const NumberReader reader(kFrameWidth, kFrameHeight);
    GreyPicture picture = Printed(0);
    for (int y = 0; y < kFrameHeight; ++y) {
        for (int x = 0; x < kFrameWidth; ++x) {
            picture.samples[static_cast<std::size_t>(y * kFrameWidth + x)] =
                static_cast<std::uint8_t>(((x / 16) ^ (y / 16)) % 2 * 200);
        }
    }
    EXPECT_FALSE(reader.Read(picture.View(), Plain()).IsReadable());
    picture.samples.assign(picture.samples.size(), 16);
    EXPECT_FALSE(reader.Read(picture.View(), Plain()).IsReadable());
}

TEST(NumberReader, SearchFindsThePlateInCroppedPaddedScaledAndTurnedPictures)
{
    const NumberReader reader(kFrameWidth, kFrameHeight);
    const struct {
        const char* name;
        int width, height;
        std::function<Point(Point)> back;
        Orientation orientation;
        double scale, offsetX, offsetY;
    } kCases[] = {
        {"cropped", 600, 320,
         [](Point p) {
             return Point{p.x + 16, p.y + 12};
         },
         Orientation::Upright, 1, -16, -12},
        {"padded", 800, 480,
         [](Point p) {
             return Point{p.x - 80, p.y - 60};
         },
         Orientation::Upright, 1, 80, 60},
        {"scaled and padded", 640, 480,
         [](Point p) {
             return Point{(p.x - 64) / 0.8, (p.y - 96) / 0.8};
         },
         Orientation::Upright, 0.8, 64, 96},
        {"mirrored", 640, 360,
         [](Point p) {
             return Point{640 - p.x, p.y};
         },
         Orientation::Mirrored, 1, 0, 0},
        {"turned", 360, 640,
         [](Point p) {
             return Point{p.y, 360 - p.x};
         },
         Orientation::Turned90, 1, 0, 0},
    };
    for (const auto& test : kCases) {
        for (const std::int32_t number : {47}) {
            const GreyPicture picture = Moved(Printed(number), test.width, test.height, test.back);
            const std::optional<Placement> found = reader.Search(picture.View());
            ASSERT_TRUE(found) << test.name;
            EXPECT_EQ(reader.Read(picture.View(), *found).number, number) << test.name;
            EXPECT_EQ(found->orientation, test.orientation) << test.name;
            EXPECT_NEAR(found->scaleX, test.scale, 0.01) << test.name;
            EXPECT_NEAR(found->offsetX, test.offsetX, 1) << test.name;
            EXPECT_NEAR(found->offsetY, test.offsetY, 1) << test.name;
        }
    }
}

TEST(NumberReader, ReadsDigitsOfWhichACropLeavesMostAndTakesHiddenOnesInFrontForZeros)
{
    const NumberReader reader(kFrameWidth, kFrameHeight);
    const Box plate = reader.Plate();
    // The upper third of the plate is cut off, and its first two digits.
    const int top = static_cast<int>(plate.top + (plate.bottom - plate.top) / 3);
    const int left = static_cast<int>(plate.left + (plate.right - plate.left) * 0.34);
    const GreyPicture picture = Moved(Printed(4715), kFrameWidth - left, kFrameHeight - top, [&](Point p) {
        return Point{p.x + left, p.y + top};
    });
    Placement placement = Plain();
    placement.offsetX = -left;
    placement.offsetY = -top;
    const Reading reading = reader.Read(picture.View(), placement);
    EXPECT_EQ(reading.number, 4715);
    EXPECT_EQ(reading.hidden, 2);
    EXPECT_TRUE(reading.IsReadable());
    placement.offsetX = -2 * kFrameWidth; // nothing of it is left
    EXPECT_FALSE(reader.Read(picture.View(), placement).IsReadable());
}

TEST(NumberReader, RefinePlacesThePictureToATenthOfAPixel)
{
    const NumberReader reader(kFrameWidth, kFrameHeight);
    for (const Point shift : {Point{0.5, 0}, Point{-0.25, 0.5}, Point{3, -2}}) {
        const GreyPicture picture = Moved(Printed(123), kFrameWidth, kFrameHeight, [&](Point p) {
            return Point{p.x - shift.x, p.y - shift.y};
        });
        const Placement found = reader.Refine(picture.View(), Plain(), 123);
        const Point corner = found.Map(Point{reader.Plate().left, reader.Plate().top});
        EXPECT_NEAR(corner.x - reader.Plate().left, shift.x, 0.15);
        EXPECT_NEAR(corner.y - reader.Plate().top, shift.y, 0.15);
    }
}

} // namespace
} // namespace tessel::verify::align
