#include <kestrel/importhost/FramePool.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using importhost::FramePool;

constexpr std::size_t kSize = 1 << 16;

TEST(FramePool, HandsOutTheBlockThatCameBackLast)
{
    FramePool pool;
    auto first = pool.Take(kSize);
    auto second = pool.Take(kSize);
    auto third = pool.Take(kSize);
    const auto* secondData = second.memory.Data();
    const auto* firstData = first.memory.Data();
    pool.Return(std::move(third.memory));
    pool.Return(std::move(first.memory));
    pool.Return(std::move(second.memory));
    EXPECT_EQ(pool.FreeCount(), 3U);
    EXPECT_EQ(pool.Take(kSize).memory.Data(), secondData);
    EXPECT_EQ(pool.Take(kSize).memory.Data(), firstData);
}

TEST(FramePool, FreshBlocksAreZeroAndSaySo)
{
    for (const std::size_t size : {std::size_t{1}, kSize, std::size_t{40} << 20U}) {
        FramePool pool;
        auto block = pool.Take(size);
        EXPECT_TRUE(block.isZero);
        EXPECT_EQ(block.memory.Size(), size);
        const auto* begin = block.memory.Data();
        EXPECT_TRUE(std::all_of(begin, begin + size, [](std::byte byte) { return byte == std::byte{0}; }));
        pool.Return(std::move(block.memory));
        EXPECT_FALSE(pool.Take(size).isZero) << "used blocks hold what they held";
    }
}

TEST(FramePool, KeepsOnlyTheSizeAskedForLast)
{
    FramePool pool;
    auto small = pool.Take(kSize);
    auto otherSmall = pool.Take(kSize);
    pool.Return(std::move(small.memory));
    auto large = pool.Take(kSize * 2);
    EXPECT_EQ(pool.FreeCount(), 0U);
    pool.Return(std::move(otherSmall.memory));
    EXPECT_EQ(pool.FreeCount(), 0U) << "a block of the former size is freed";
    pool.Return(std::move(large.memory));
    EXPECT_EQ(pool.FreeCount(), 1U);
}

TEST(FramePool, BlocksAreAlignedForStreamingStores)
{
    FramePool pool;
    for (const std::size_t size : {kSize, std::size_t{40} << 20U}) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pool.Take(size).memory.Data()) % 64, 0U);
    }
}

TEST(FramePool, NoTwoThreadsHoldTheSameBlock)
{
    FramePool pool;
    constexpr int kThreads = 4;
    constexpr int kRounds = 2000;
    std::vector<int> failures(kThreads, 0);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&pool, &failures, thread] {
            for (int round = 0; round < kRounds; ++round) {
                auto block = pool.Take(kSize);
                std::memset(block.memory.Data(), thread, 64);
                std::this_thread::yield();
                const auto* data = block.memory.Data();
                failures[static_cast<std::size_t>(thread)] +=
                    std::all_of(data, data + 64, [thread](std::byte byte) { return byte == std::byte(thread); })
                        ? 0
                        : 1;
                pool.Return(std::move(block.memory));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, std::vector<int>(kThreads, 0));
    EXPECT_LE(pool.FreeCount(), static_cast<std::size_t>(kThreads));
}

} // namespace
