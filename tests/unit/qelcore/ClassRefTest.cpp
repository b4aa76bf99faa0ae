#include <kestrel/qelcore/classref/ClassWatcher.h>
#include <kestrel/qelcore/classref/UnknownBase.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using namespace qelcore::classref;

TEST(ClassWatcher, CountsTheLivingByName)
{
    EXPECT_EQ(CountWatched("Dialog"), 0U);
    {
        const WatchedClass first("Dialog");
        const WatchedClass second("Dialog");
        const WatchedClass other("Dialog2");
        EXPECT_EQ(CountWatched("Dialog"), 2U);
        EXPECT_EQ(CountWatched("Dialog2"), 1U);
        EXPECT_EQ(CountWatched("Dia"), 0U);
    }
    EXPECT_EQ(CountWatched("Dialog"), 0U);
}

TEST(ClassWatcher, CountsOnManyThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([] {
            for (int k = 0; k < 1000; ++k) {
                const WatchedClass watched("Busy");
                EXPECT_GE(CountWatched("Busy"), 1U);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(CountWatched("Busy"), 0U);
}

class Exchange : public UnknownBase {
public:
    void* QueryInterface(std::string_view typeName) noexcept override
    {
        return typeName == "Exchange" ? this : nullptr;
    }
};

TEST(UnknownBase, HandsOutSharedOwnershipOfItself)
{
    auto exchange = std::make_shared<Exchange>();
    const std::shared_ptr<UnknownBase> shared = exchange->GetSharedFromThis();
    EXPECT_EQ(shared, exchange);
    exchange.reset();
    EXPECT_EQ(shared->QueryInterface("Exchange"), shared.get());
    EXPECT_EQ(shared->QueryInterface("Exchang"), nullptr);
}

} // namespace
