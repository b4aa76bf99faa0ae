#include <tessel/export/OrderedPipeline.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <new>
#include <stdexcept>
#include <string>

namespace tessel::exporting {
namespace {

using Pipeline = OrderedPipeline<std::int64_t>;

std::vector<Pipeline::Make> Makers(int count, const Pipeline::Make& make)
{
    return std::vector<Pipeline::Make>(static_cast<std::size_t>(count), make);
}

TEST(OrderedPipeline, ResultsComeInOrderWhateverThreadFinishesFirst)
{
    for (const int threads : {1, 2, 5, 16}) {
        // Every third result takes long enough that others overtake it.
        Pipeline pipeline(300,
                          Makers(threads,
                                 [](std::int64_t index) {
                                     if (index % 3 == 0) {
                                         std::this_thread::sleep_for(std::chrono::microseconds(200));
                                     }
                                     return index * index;
                                 }),
                          threads + 2);
        for (std::int64_t index = 0; index < 300; ++index) {
            EXPECT_EQ(pipeline.Take(), index * index) << threads;
        }
        EXPECT_EQ(pipeline.Take(), std::nullopt);
        EXPECT_EQ(pipeline.Take(), std::nullopt);
    }
}

TEST(OrderedPipeline, NoMoreThanTheCapacityIsMadeAhead)
{
    constexpr std::int64_t kCapacity = 3;
    std::atomic<std::int64_t> taken{0};
    std::atomic<std::int64_t> furthest{0};
    Pipeline pipeline(200,
                      Makers(4,
                             [&](std::int64_t index) {
                                 const std::int64_t ahead = index - taken.load();
                                 std::int64_t seen = furthest.load();
                                 while (ahead > seen && !furthest.compare_exchange_weak(seen, ahead)) {
                                 }
                                 return index;
                             }),
                      kCapacity);
    while (pipeline.Take()) {
        ++taken;
    }
    // The taker counts after it has made room: one more may have started.
    EXPECT_LE(furthest.load(), kCapacity);
}

TEST(OrderedPipeline, FailureComesWhenItsTurnDoes)
{
    Pipeline pipeline(10,
                      Makers(3,
                             [](std::int64_t index) {
                                 if (index == 4) {
                                     throw std::runtime_error("four");
                                 }
                                 return index;
                             }),
                      4);
    for (std::int64_t index = 0; index < 4; ++index) {
        EXPECT_EQ(pipeline.Take(), index);
    }
    EXPECT_THROW(static_cast<void>(pipeline.Take()), std::runtime_error);
}

TEST(OrderedPipeline, NothingIsMadeBehindAFailure)
{
    std::atomic<int> made{0};
    Pipeline pipeline(1000,
                      Makers(1,
                             [&](std::int64_t) -> std::int64_t {
                                 ++made;
                                 throw std::bad_alloc();
                             }),
                      1000);
    EXPECT_THROW(static_cast<void>(pipeline.Take()), std::bad_alloc);
    EXPECT_EQ(pipeline.Take(), std::nullopt);
    EXPECT_EQ(made.load(), 1);
}

TEST(OrderedPipeline, DestructionStopsTheWork)
{
    std::atomic<std::int64_t> made{0};
    {
        Pipeline pipeline(1'000'000'000,
                          Makers(4,
                                 [&](std::int64_t index) {
                                     ++made;
                                     return index;
                                 }),
                          4);
        EXPECT_EQ(pipeline.Take(), 0);
    }
    EXPECT_LE(made.load(), 5);
}

TEST(OrderedPipeline, NothingToMakeEndsAtOnce)
{
    Pipeline pipeline(0, Makers(2, [](std::int64_t index) { return index; }), 2);
    EXPECT_EQ(pipeline.Take(), std::nullopt);
}

} // namespace
} // namespace tessel::exporting
