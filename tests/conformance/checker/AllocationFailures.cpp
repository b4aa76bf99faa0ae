#include "AllocationFailures.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace conformance {

namespace {

std::atomic<int> remaining{-1}; // allocations until the first failure; negative: none fails
std::atomic<bool> failed{false};

} // namespace

void AllocationFailures::FailNth(int nth) noexcept
{
    failed = false;
    remaining = nth;
}

void AllocationFailures::Stop() noexcept
{
    remaining = -1;
    failed = false;
}

bool AllocationFailures::HasFailed() noexcept
{
    return failed;
}

void AllocationFailures::PretendFailed() noexcept
{
    failed = true;
}

} // namespace conformance

// Replaces the global allocation function for the whole process: the loaded libraries bind to it too.
void* operator new(std::size_t bytes)
{
    using namespace conformance;
    if (remaining >= 0 && (remaining == 0 || --remaining == 0)) {
        failed = true;
        // Only the one allocation fails: what reports the failure may need memory itself.
        remaining = -1;
        throw std::bad_alloc();
    }
    void* block = std::malloc(bytes == 0 ? 1 : bytes);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
