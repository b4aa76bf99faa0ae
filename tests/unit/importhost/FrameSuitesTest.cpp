#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importhost/FrameSuites.h>
#include <kestrel/importhost/StandardParameters.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

using importhost::FrameBuffer;
using importhost::FramePool;
using importhost::FrameRefusal;
using importhost::FrameRequest;
using importhost::NewFrameContent;

std::uint32_t Code(BR::PixelFormat format)
{
    return BR::BEToSDKPixelFormat(format);
}

/// A request and the creator's answer to it.
struct Creation {
    std::shared_ptr<FramePool> pool = std::make_shared<FramePool>();
    FrameRequest request{pool, NewFrameContent::Zero};
    ksFrameHandle handle = reinterpret_cast<ksFrameHandle>(std::uintptr_t{1});

    std::int32_t Ask(std::uint32_t format, std::int32_t width, std::int32_t height, std::int32_t access = 2)
    {
        auto token = request.Token();
        return importhost::FrameCreatorSuite4().createFrame(&handle, access, format, width, height, false, 0, 1,
                                                            1, token.data());
    }
};

TEST(FrameCreator, EveryPaintableFormatGetsAFrameAndNoOtherDoes)
{
    int made = 0;
    for (const auto& info : BR::AllPixelFormats()) {
        Creation creation;
        if (creation.Ask(info.sdkCode, 64, 8) == 0) {
            ++made;
            EXPECT_NE(creation.handle, nullptr) << info.constant;
        } else {
            EXPECT_EQ(creation.handle, nullptr) << info.constant;
            EXPECT_EQ(creation.request.Refusal(), FrameRefusal::FormatCannotBePainted) << info.constant;
        }
    }
    EXPECT_EQ(made, 36);
}

TEST(FrameCreator, CodesThatAreNoFormatAreRefused)
{
    for (const std::uint32_t code : {0U, 1U, 0xFFFFFFFFU, 0x61726763U}) {
        Creation creation;
        EXPECT_LT(creation.Ask(code, 64, 8), 0) << code;
        EXPECT_EQ(creation.handle, nullptr);
    }
}

TEST(FrameCreator, SidesOutside1To100000AreRefused)
{
    const std::uint32_t format = Code(BR::PixelFormat::BGRA_4444_8u);
    for (const std::int32_t side : {0, -1, 100'001, INT32_MAX, INT32_MIN}) {
        Creation wide;
        EXPECT_LT(wide.Ask(format, side, 1), 0) << side;
        EXPECT_EQ(wide.request.Refusal(), FrameRefusal::SizeOutOfRange);
        Creation high;
        EXPECT_LT(high.Ask(format, 1, side), 0) << side;
        EXPECT_EQ(high.handle, nullptr);
    }
    Creation widest;
    EXPECT_EQ(widest.Ask(format, 100'000, 1), 0);
    Creation highest;
    EXPECT_EQ(highest.Ask(format, 1, 100'000), 0);
}

TEST(FrameCreator, ABufferOf2GiBIsTheLargest)
{
    // 16 bytes a pixel: rows of 65536 bytes, of which 32768 make 2^31.
    const std::uint32_t format = Code(BR::PixelFormat::BGRA_4444_32f);
    Creation tooLarge;
    EXPECT_LT(tooLarge.Ask(format, 4096, 32769), 0);
    EXPECT_EQ(tooLarge.request.Refusal(), FrameRefusal::TooLarge);
    importhost::FrameRefusal refusal{};
    const auto layout = importhost::LayOutFrame(format, 4096, 32768, refusal);
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->ByteCount(), std::size_t{1} << 31U);
    Creation everything;
    EXPECT_LT(everything.Ask(format, 100'000, 100'000), 0);
}

TEST(FrameCreator, RowsAreWholeCacheLinesAndV210RowsWhole128)
{
    for (const auto& info : BR::AllPixelFormats()) {
        for (std::int32_t width = 1; width < 200; ++width) {
            importhost::FrameRefusal refusal{};
            const auto layout = importhost::LayOutFrame(info.sdkCode, width, 3, refusal);
            if (!layout) {
                continue;
            }
            EXPECT_EQ(layout->rowBytes % 64, 0) << info.constant << " " << width;
            EXPECT_GE(static_cast<std::size_t>(layout->rowBytes), layout->pictureRowBytes);
            if (info.format == BR::PixelFormat::V210_422_10u_601) {
                EXPECT_EQ(layout->rowBytes, (width + 47) / 48 * 128) << width;
            }
        }
    }
}

TEST(FrameCreator, WithoutAKnownRequestOrWithAnotherAccessNothingIsMade)
{
    const auto& suite = importhost::FrameCreatorSuite4();
    const std::uint32_t format = Code(BR::PixelFormat::BGRA_4444_8u);
    auto handle = reinterpret_cast<ksFrameHandle>(std::uintptr_t{1});
    EXPECT_LT(suite.createFrame(&handle, 2, format, 8, 8, false, 0, 1, 1, nullptr), 0);
    EXPECT_EQ(handle, nullptr);
    std::array<std::uint8_t, 16> garbage{};
    garbage.fill(0xCC);
    EXPECT_LT(suite.createFrame(&handle, 2, format, 8, 8, false, 0, 1, 1, garbage.data()), 0);
    EXPECT_LT(suite.createFrame(nullptr, 2, format, 8, 8, false, 0, 1, 1, garbage.data()), 0);
    Creation creation;
    EXPECT_LT(creation.Ask(format, 8, 8, /*access=*/1), 0);
}

TEST(FrameCreator, FramesNobodyTakesGoBackToThePool)
{
    auto pool = std::make_shared<FramePool>();
    {
        FrameRequest request(pool, NewFrameContent::Zero);
        const ksFrameHandle first = request.Create(Code(BR::PixelFormat::BGRA_4444_8u), 16, 16);
        ASSERT_NE(request.Create(Code(BR::PixelFormat::BGRA_4444_8u), 16, 16), nullptr);
        const auto taken = request.TakeFrame(first);
        ASSERT_NE(taken, nullptr);
        EXPECT_EQ(request.TakeFrame(first), nullptr) << "a frame is taken once";
        EXPECT_EQ(request.TakeFrame(&pool), nullptr) << "a foreign handle is no frame";
        EXPECT_EQ(request.TakeFrame(nullptr), nullptr);
        EXPECT_EQ(pool->FreeCount(), 0U);
    }
    EXPECT_EQ(pool->FreeCount(), 2U);
}

TEST(FrameCreator, AUsedBufferIsZeroedAgain)
{
    auto pool = std::make_shared<FramePool>();
    const std::uint32_t format = Code(BR::PixelFormat::BGRA_4444_8u);
    {
        FrameRequest request(pool, NewFrameContent::Pattern, 0xEE);
        auto* frame = static_cast<FrameBuffer*>(request.Create(format, 16, 2));
        EXPECT_EQ(frame->Pixels()[0], std::byte{0xEE});
        EXPECT_EQ(frame->Pixels()[frame->Layout().ByteCount() - 1], std::byte{0xEE});
    }
    FrameRequest request(pool, NewFrameContent::Zero);
    auto* frame = static_cast<FrameBuffer*>(request.Create(format, 16, 2));
    for (std::size_t i = 0; i < frame->Layout().ByteCount(); ++i) {
        ASSERT_EQ(frame->Pixels()[i], std::byte{0}) << i;
    }
}

TEST(FrameSuite, SaysWhereTheFrameIs)
{
    Creation creation;
    ASSERT_EQ(creation.Ask(Code(BR::PixelFormat::UYVY_422_8u_709), 33, 5), 0);
    const auto& suite = importhost::FrameSuite1();
    std::int32_t bounds[4] = {-1, -1, -1, -1};
    EXPECT_EQ(suite.getBounds(creation.handle, bounds), 0);
    EXPECT_EQ(bounds[0], 0);
    EXPECT_EQ(bounds[1], 0);
    EXPECT_EQ(bounds[2], 33);
    EXPECT_EQ(bounds[3], 5);
    std::int32_t rowBytes = 0;
    EXPECT_EQ(suite.getRowBytes(creation.handle, &rowBytes), 0);
    EXPECT_EQ(rowBytes, 128); // 17 pairs of 4 bytes are 68, padded to 64s
    void* pixels = nullptr;
    EXPECT_EQ(suite.getPixels(creation.handle, 2, &pixels), 0);
    std::memset(pixels, 1, static_cast<std::size_t>(rowBytes) * 5);
}

TEST(FrameSuite, NullsAreRefusedAndOutputsStay)
{
    const auto& suite = importhost::FrameSuite1();
    void* pixels = &pixels;
    std::int32_t number = 77;
    std::int32_t bounds[4] = {77, 77, 77, 77};
    EXPECT_LT(suite.getPixels(nullptr, 2, &pixels), 0);
    EXPECT_LT(suite.getBounds(nullptr, bounds), 0);
    EXPECT_LT(suite.getRowBytes(nullptr, &number), 0);
    EXPECT_EQ(pixels, &pixels);
    EXPECT_EQ(number, 77);
    EXPECT_EQ(bounds[0], 77);
    Creation creation;
    ASSERT_EQ(creation.Ask(Code(BR::PixelFormat::BGRA_4444_8u), 4, 4), 0);
    EXPECT_LT(suite.getPixels(creation.handle, 1, &pixels), 0);
    EXPECT_LT(suite.getPixels(creation.handle, 2, nullptr), 0);
    EXPECT_LT(suite.getBounds(creation.handle, nullptr), 0);
    EXPECT_LT(suite.getRowBytes(creation.handle, nullptr), 0);
}

/// The tables as a plug-in reaches them.
const ksSuiteAccess& Access()
{
    const ksStdParms& parameters = importhost::HostStandardParameters();
    const ksServiceTables* services = parameters.services;
    const ksUtilityFunctions* utility = services->utility;
    return *utility->getSuiteAccess();
}

TEST(StandardParameters, EverySuiteIsHadUnderItsNameAndVersionOnly)
{
    struct Known {
        const char* name;
        std::int32_t version;
    };
    const Known known[] = {{"Kestrel Legacy Suite", 1},
                           {"Kestrel Legacy Suite", 2},
                           {"Kestrel Vimo Creator 2 Suite", 4},
                           {"Kestrel Vimo Suite", 1},
                           {"Kestrel Pixel Format Suite", 1}};
    for (const Known& suite : known) {
        const void* table = nullptr;
        EXPECT_EQ(Access().acquireSuite(suite.name, suite.version, &table), 0) << suite.name;
        EXPECT_NE(table, nullptr);
        const void* untouched = &table;
        EXPECT_LT(Access().acquireSuite(suite.name, suite.version + 2, &untouched), 0) << suite.name;
        EXPECT_EQ(untouched, &table);
    }
    const void* untouched = &known;
    EXPECT_LT(Access().acquireSuite("kestrel legacy suite", 1, &untouched), 0);
    EXPECT_LT(Access().acquireSuite("", 1, &untouched), 0);
    EXPECT_LT(Access().acquireSuite(nullptr, 1, &untouched), 0);
    EXPECT_LT(Access().acquireSuite("Kestrel Vimo Suite", 1, nullptr), 0);
    EXPECT_EQ(untouched, &known);
}

TEST(StandardParameters, SlotEightOfTheMemoryTableAllocates)
{
    const ksServiceTables* services = importhost::HostStandardParameters().services;
    const ksMemoryFunctions* memory = services->memory;
    void* block = memory->newBlock(1000);
    ASSERT_NE(block, nullptr);
    std::memset(block, 1, 1000);
    importhost::FreeHostBlock(block);
    importhost::FreeHostBlock(nullptr);
    for (const ksUnknownFunction function : memory->slots0To7) {
        ASSERT_NE(function, nullptr);
    }
}

} // namespace
