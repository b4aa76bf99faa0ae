#include <tessel/export/plan/ColorTags.h>

#include <gtest/gtest.h>

namespace tessel::exporting {
namespace {

constexpr ksSEIColorCodesRec kRec709{1, 1, 1, 0};
constexpr ksSEIColorCodesRec kRec709Full{1, 1, 1, 1};
constexpr ksSEIColorCodesRec kSRgb{1, 13, 0, 1};

ColorTags Tags(BR::PixelFormat format, const ksSEIColorCodesRec& codes, PictureLayout layout)
{
    return TagsFor(KindOf(format), codes, InfoOf(layout), CodingFor(codes, CodeRanges::LimitedAndFull));
}

TEST(ColorTags, RgbPixelsAnnounceMatrix0AndFullRange)
{
    EXPECT_EQ(Tags(BR::PixelFormat::BGRA_4444_8u, kRec709, PictureLayout::Bgra), (ColorTags{1, 1, 0, true}));
    EXPECT_EQ(Tags(BR::PixelFormat::UYVY_422_8u_601, kRec709, PictureLayout::Rgb24),
              (ColorTags{1, 1, 0, true}));
}

TEST(ColorTags, LinearLightInIntegersAnnouncesTheCurveThatItPassed)
{
    constexpr ksSEIColorCodesRec kRec2020Linear{9, 8, 0, 1};
    const auto linear = BR::PixelFormat::BGRA_4444_32f_Linear;
    EXPECT_EQ(Tags(linear, kRec2020Linear, PictureLayout::Rgb24), (ColorTags{9, 1, 0, true}));
    EXPECT_EQ(Tags(linear, kRec2020Linear, PictureLayout::Gbrpf32), (ColorTags{9, 8, 0, true}));
    EXPECT_EQ(Tags(BR::PixelFormat::BGRA_4444_8u, kRec2020Linear, PictureLayout::Bgra),
              (ColorTags{9, 8, 0, true}))
        << "moved as they are, tags and all";
}

TEST(ColorTags, FormatAndSpaceThatDisagreeAreBothKept)
{
    EXPECT_EQ(Tags(BR::PixelFormat::UYVY_422_8u_601, kRec709, PictureLayout::Uyvy),
              (ColorTags{1, 1, 1, false}));
    EXPECT_EQ(Tags(BR::PixelFormat::UYVY_422_8u_601, kRec709Full, PictureLayout::Uyvy),
              (ColorTags{1, 1, 1, true}));
}

TEST(ColorTags, YCbCrPixelsInAnRgbSpaceAnnounceTheFormatsMatrix)
{
    EXPECT_EQ(Tags(BR::PixelFormat::UYVY_422_8u_601, kSRgb, PictureLayout::Uyvy), (ColorTags{1, 13, 6, false}));
    EXPECT_EQ(Tags(BR::PixelFormat::VUYA_4444_8u_709, kSRgb, PictureLayout::Yuva444p),
              (ColorTags{1, 13, 1, false}));
}

TEST(ColorTags, YCbCrMadeFromRgbIsLimitedWhereFilesCannotSayOtherwise)
{
    const YCbCrCoding coding = CodingFor(kRec709Full, CodeRanges::OnlyLimited);
    EXPECT_EQ(coding, (YCbCrCoding{Matrix::Bt709, false}));
    const PixelKind rgb = KindOf(BR::PixelFormat::BGRA_4444_8u);
    const PixelKind ycbcr = KindOf(BR::PixelFormat::UYVY_422_8u_709);
    EXPECT_EQ(TagsFor(rgb, kRec709Full, InfoOf(PictureLayout::Uyvy), coding), (ColorTags{1, 1, 1, false}));
    // Code values are copied, and with them the range that the clip announces.
    EXPECT_EQ(TagsFor(ycbcr, kRec709Full, InfoOf(PictureLayout::Uyvy), coding), (ColorTags{1, 1, 1, true}));
}

TEST(ColorTags, YCbCrMadeFromRgbAnnouncesWhatItWasMadeWith)
{
    EXPECT_EQ(Tags(BR::PixelFormat::BGRA_4444_8u, kSRgb, PictureLayout::Yuv420p), (ColorTags{1, 13, 1, false}));
    EXPECT_EQ(Tags(BR::PixelFormat::BGRA_4444_8u, kRec709Full, PictureLayout::Yuv420p),
              (ColorTags{1, 1, 1, true}));
    EXPECT_EQ(CodingFor({9, 16, 9, 0}, CodeRanges::LimitedAndFull), (YCbCrCoding{Matrix::Bt2020, false}));
    for (const std::int32_t odd : {-1, 0, 2, 3, 4, 8, 10, 256, 257, 1 << 30}) {
        EXPECT_EQ(CodingFor({1, 1, odd, 1}, CodeRanges::LimitedAndFull), (YCbCrCoding{Matrix::Bt709, false}))
            << odd;
    }
}

} // namespace
} // namespace tessel::exporting
