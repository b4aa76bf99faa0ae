/// The 1st, 2nd, 3rd ... allocation of each request fails, until the request succeeds: the answer is each time
/// the one for short memory, or the one that a reader gives for a document that it cannot read; nothing is
/// leaked, and the instance can be used.
#include <ImporterTessel/entry/ImporterTessel.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/qelcore/debug/DebugDatabase.h>
#include <kestrel/qelcore/logging/Log.h>

#include <gtest/gtest.h>
#include <support/ForeignHost.h>
#include <support/ScopedVariable.h>
#include <support/TemporaryFolder.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::atomic<std::int64_t> gAllocationsLeft{std::numeric_limits<std::int64_t>::max()};
std::atomic<std::int64_t> gLivingBlocks{0};

} // namespace

void* operator new(std::size_t size)
{
    if (gAllocationsLeft.fetch_sub(1) <= 0) {
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++gLivingBlocks;
    return block;
}

// Not counted: callers of this form work without the memory too, as std::stable_sort does.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    void* const block = std::malloc(size == 0 ? 1 : size);
    gLivingBlocks += block == nullptr ? 0 : 1;
    return block;
}

void operator delete(void* block) noexcept
{
    if (block != nullptr) {
        --gLivingBlocks;
        std::free(block);
    }
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    operator delete(block);
}

namespace {

using ImporterTessel::TesselInfo;
using Module = KsImportModule<ImporterTessel::ImporterTessel>;

/// Makes every allocation after the next `count` fail, until it is gone.
class ScopedShortMemory {
public:
    explicit ScopedShortMemory(std::int64_t count) { gAllocationsLeft = count; }
    ~ScopedShortMemory() { gAllocationsLeft = std::numeric_limits<std::int64_t>::max(); }
    ScopedShortMemory(const ScopedShortMemory&) = delete;
    ScopedShortMemory& operator=(const ScopedShortMemory&) = delete;

    /// Whether an allocation has failed so far.
    [[nodiscard]] static bool HasFailed() { return gAllocationsLeft < 0; }
};

class AllocationFailure : public testing::Test {
protected:
    void SetUp() override
    {
        TesselInfo info;
        info.mFrameWidth = 64;
        info.mSwatchColorsFilePath = u"a path that is long enough for a block of its own";
        mText = ImporterTessel::TesselToUTF8String(info);
        mPath = mFolder.Write("clip.tessel", mText).u16string();
        mFile.path = mPath.c_str();
    }

    /// Fails one allocation after another; `request` answers and cleans up what it made, and `isRight` says
    /// whether an answer may be given where an allocation has failed.
    void FailEachAllocation(const std::function<std::int32_t()>& request,
                            const std::function<bool(std::int32_t)>& isRight)
    {
        const qelcore::logging::ScopedListener quiet([](const qelcore::logging::Message&) {});
        ASSERT_EQ(request(), 0); // also makes what lives for the process
        for (std::int64_t count = 0;; ++count) {
            const std::int64_t living = gLivingBlocks;
            std::int32_t result = 0;
            bool hasFailed = false;
            {
                const ScopedShortMemory shortMemory(count);
                result = request();
                hasFailed = ScopedShortMemory::HasFailed();
            }
            ASSERT_EQ(gLivingBlocks, living) << "leaked with allocation " << count + 1 << " failing";
            if (!hasFailed) {
                ASSERT_EQ(result, 0);
                ASSERT_GT(count, 0) << "the request allocates nothing; it proves nothing";
                return;
            }
            ASSERT_TRUE(isRight(result))
                << "result " << result << " with allocation " << count + 1 << " failing";
            ASSERT_LT(count, 1'000'000);
        }
    }

    testsupport::ForeignHost mHost;
    test::TemporaryFolder mFolder;
    std::string mText;
    std::u16string mPath;
    ksFileAccessRec mFile{};
};

bool Is4(std::int32_t result)
{
    return result == 4;
}

/// 0 is the default clip of a document that could not be read for want of memory.
bool Is4Or0(std::int32_t result)
{
    return result == 4 || result == 0;
}

std::int32_t Delete(ksInstance instance)
{
    return instance == nullptr ? 0 : Module::ImportEntry(9, nullptr, nullptr, instance);
}

TEST_F(AllocationFailure, OfCreationIs4)
{
    FailEachAllocation(
        [this] {
            ksFileInfoRec record{};
            const std::int32_t result = Module::ImportEntry(81, &mHost.stdParms, nullptr, &record);
            EXPECT_EQ(record.instance != nullptr, result == 3);
            EXPECT_EQ(Delete(record.instance), 0);
            return result == 3 ? 0 : result;
        },
        Is4);
}

TEST_F(AllocationFailure, OfOpeningIs4OrTheDefaultClip)
{
    FailEachAllocation(
        [this] {
            ksOpenRec record{};
            record.path = mPath.c_str();
            const std::int32_t result = Module::ImportEntry(39, &mHost.stdParms, nullptr, &record);
            EXPECT_EQ(record.instance != nullptr, result == 0);
            if (result == 0) {
                ksFrameSizeRec size{};
                size.instance = record.instance;
                EXPECT_EQ(Module::ImportEntry(45, nullptr, &size, nullptr), 0);
                EXPECT_TRUE(size.width == 64 || size.width == 720) << size.width;
            }
            EXPECT_EQ(Delete(record.instance), 0);
            return result;
        },
        Is4Or0);
}

TEST_F(AllocationFailure, OfDescribingATextIs4OrTheDefaultClip)
{
    ksFileAccessRec nowhere{};
    FailEachAllocation(
        [&] {
            ksFileInfoRec record{};
            record.settingsText = mText.c_str();
            const std::int32_t result = Module::ImportEntry(37, &mHost.stdParms, &nowhere, &record);
            EXPECT_EQ(record.instance != nullptr, result == 0);
            EXPECT_TRUE(result != 0 || record.frameWidth == 64 || record.frameWidth == 720);
            EXPECT_EQ(Delete(record.instance), 0);
            return result;
        },
        Is4Or0);
}

TEST_F(AllocationFailure, OfDescribingAFileThatIsThereIs4)
{
    FailEachAllocation(
        [&] {
            ksFileInfoRec record{};
            const std::int32_t result = Module::ImportEntry(37, &mHost.stdParms, &mFile, &record);
            EXPECT_EQ(record.instance != nullptr, result == 0);
            EXPECT_EQ(Delete(record.instance), 0);
            return result;
        },
        Is4);
}

TEST_F(AllocationFailure, OfTheSettingsExchangeIs4OrTheDefaultClip)
{
    std::vector<char> buffer(10240);
    FailEachAllocation(
        [&] {
            ksSettingsExchangeRec record{};
            record.text = buffer.data();
            record.newClip = 1;
            return Module::ImportEntry(38, &mHost.stdParms, &mFile, &record);
        },
        // Without memory a file that is there cannot be opened either.
        [](std::int32_t result) { return Is4Or0(result) || result == 2; });
}

TEST_F(AllocationFailure, OfTheGateIs4)
{
    const std::filesystem::path database =
        mFolder.Write("debug-database.json", R"({"ML.LoadTestingPluginsAtStartup": "true"})");
    const test::ScopedVariable named("KESTREL_DEBUG_DATABASE", database.c_str());
    ksStartUpRec record{};
    FailEachAllocation([&record] { return Module::ImportEntry(0, nullptr, &record, nullptr); }, Is4);
}

TEST_F(AllocationFailure, CannotBefallTheGateUnderAnOverride)
{
    constexpr std::string_view kKey = "ML.LoadTestingPluginsAtStartup";
    const qelcore::debug::ScopedOverride open(kKey, "true");
    ksStartUpRec record{};
    std::int32_t result = 0;
    bool hasFailed = false;
    {
        // "true" needs no block of its own, so nothing is allocated at all.
        const ScopedShortMemory shortMemory(0);
        result = Module::ImportEntry(0, nullptr, &record, nullptr);
        hasFailed = ScopedShortMemory::HasFailed();
    }
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(hasFailed);
}

} // namespace
