#include <tessel/export/convert/BufferPool.h>

#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <vector>

namespace tessel::exporting {
namespace {

TEST(BufferPool, MemoryIsUsedAgainOnceItsLastOwnerIsGone)
{
    BufferPool pool;
    std::shared_ptr<AlignedBuffer> first = pool.Take(1000);
    std::shared_ptr<const void> other = first;
    const std::byte* const memory = first->Bytes();
    first.reset();
    const std::shared_ptr<AlignedBuffer> second = pool.Take(1000);
    EXPECT_NE(second->Bytes(), memory); // `other` still has it

    other.reset();
    EXPECT_EQ(pool.Take(1000)->Bytes(), memory);
}

TEST(BufferPool, ABufferHasTheSizeThatWasAskedForLast)
{
    BufferPool pool;
    EXPECT_EQ(pool.Take(1000)->Size(), 1000U);
    EXPECT_EQ(pool.Take(2000)->Size(), 2000U);
    EXPECT_EQ(pool.Take(1000)->Size(), 1000U);
}

TEST(BufferPool, BuffersOutliveThePool)
{
    std::optional<BufferPool> pool(std::in_place);
    const std::shared_ptr<AlignedBuffer> buffer = pool->Take(64);
    pool.reset();
    buffer->Bytes()[63] = std::byte{7};
    EXPECT_EQ(buffer->Bytes()[63], std::byte{7});
}

TEST(BufferPool, OwnersLetGoOnOtherThreads)
{
    BufferPool pool;
    for (int round = 0; round < 100; ++round) {
        std::vector<std::thread> owners;
        for (int i = 0; i < 4; ++i) {
            owners.emplace_back([buffer = pool.Take(256)] { buffer->Bytes()[0] = std::byte{1}; });
        }
        for (std::thread& owner : owners) {
            owner.join();
        }
    }
    EXPECT_EQ(pool.Take(256)->Size(), 256U);
}

} // namespace
} // namespace tessel::exporting
