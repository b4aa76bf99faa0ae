#include <ImporterTessel/video/FrameFormat.h>
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <gtest/gtest.h>

#include <set>

using namespace ImporterTessel;

namespace {

using BR::PixelFormat;

TEST(FrameFormat, PaintableFormatsAreTakenAsTheyAre)
{
    int paintable = 0;
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(info.format);
        if (code < 0x01000000) {
            ++paintable;
            const FrameFormat choice = FrameFormatOf(info.sdkCode);
            EXPECT_EQ(choice.hostCode, info.sdkCode) << info.constant;
            EXPECT_EQ(choice.paintCode, code) << info.constant;
        }
    }
    EXPECT_EQ(paintable, 36);
}

TEST(FrameFormat, StandardDefinitionDVBecomesBGRA)
{
    for (const PixelFormat format :
         {PixelFormat::NTSCDV25, PixelFormat::PALDV25, PixelFormat::NTSCDV50, PixelFormat::PALDV50}) {
        const FrameFormat choice = FrameFormatOf(BR::BEToSDKPixelFormat(format));
        EXPECT_EQ(choice.paintCode, 12U);
        EXPECT_EQ(choice.hostCode, BR::BEToSDKPixelFormat(PixelFormat::BGRA_4444_8u));
    }
}

TEST(FrameFormat, AllOtherPlanarAndCompressedFormatsBecomeVUYA709)
{
    const std::set<PixelFormat> dv601{PixelFormat::NTSCDV25, PixelFormat::PALDV25, PixelFormat::NTSCDV50,
                                      PixelFormat::PALDV50};
    int seen = 0;
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        if (PM_QELPixelFormatToPMPixelFormat(info.format) >= 0x01000000 && !dv601.contains(info.format)) {
            ++seen;
            const FrameFormat choice = FrameFormatOf(info.sdkCode);
            EXPECT_EQ(choice.paintCode, 2061U) << info.constant;
            EXPECT_EQ(choice.hostCode, BR::BEToSDKPixelFormat(PixelFormat::VUYA_4444_8u_709)) << info.constant;
        }
    }
    EXPECT_EQ(seen, 8);
}

TEST(FrameFormat, AnUnknownFormatIsZeroInBothNumberings)
{
    for (const std::uint32_t code : {0U, 1U, 0xFFFFFFFFU, 0x20202020U}) {
        EXPECT_EQ(FrameFormatOf(code).paintCode, 0U);
        EXPECT_EQ(FrameFormatOf(code).hostCode, 0U);
    }
}

/// The rule, bit by bit, as a table of what makes a code BGRA.
TEST(NormalizedPaintCode, OnlySubsampledYCbCrOfTopBytes9To14WithThe601MatrixBecomesBGRA)
{
    for (std::uint32_t kind = 0; kind < 256; ++kind) {
        for (const std::uint32_t low :
             {0x039U, 0x139U, 0x839U, 0x038U, 0x029U, 0x019U, 0x009U, 0x000U, 0xFFFU, 0x7FFU}) {
            const std::uint32_t code = kind << 24U | low;
            std::uint32_t expected = 2061;
            if (kind == 0) {
                expected = code;
            } else if (low % 2 == 1 && kind >= 9 && kind <= 14 && (low & 0x30U) == 0x30U &&
                       (low & 0x800U) == 0) {
                expected = 12;
            }
            EXPECT_EQ(NormalizedPaintCode(code), expected) << std::hex << code;
        }
    }
}

} // namespace
