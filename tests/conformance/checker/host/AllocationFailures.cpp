#include "AllocationFailures.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace conformance {

namespace {

std::atomic<int> remaining{-1}; // allocations until the one that fails; negative: none fails
std::atomic<bool> failed{false};
std::atomic<long> made{0};
std::atomic<long> outstanding{0};
thread_local int exempt = 0;

/// Before each allocation. @throws std::bad_alloc where it is the one to fail.
void CountAllocation()
{
    ++outstanding;
    if (exempt > 0) {
        return;
    }
    ++made;
    // One allocation fails and no more, because reporting the failure may allocate too.
    if (remaining >= 0 && --remaining == -1) {
        failed = true;
        --outstanding;
        throw std::bad_alloc();
    }
}

void* Counted(void* block)
{
    if (block == nullptr) {
        --outstanding;
        throw std::bad_alloc();
    }
    return block;
}

void Free(void* block) noexcept
{
    if (block != nullptr) {
        --outstanding;
    }
    std::free(block);
}

} // namespace

void AllocationFailures::FailNth(int nth) noexcept
{
    failed = false;
    remaining = nth - 1;
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

long AllocationFailures::Made() noexcept
{
    return made;
}

long AllocationFailures::Outstanding() noexcept
{
    return outstanding;
}

AllocationFailures::Exempt::Exempt() noexcept
{
    ++exempt;
}

AllocationFailures::Exempt::~Exempt()
{
    --exempt;
}

} // namespace conformance

// Replaces the global allocation functions for the whole process: the loaded libraries bind to them too. All
// forms are here, so that no block comes from one allocator and goes back to another: a sanitizer brings forms
// of its own for those that a program does not define.
void* operator new(std::size_t bytes)
{
    conformance::CountAllocation();
    return conformance::Counted(std::malloc(bytes == 0 ? 1 : bytes));
}

void* operator new(std::size_t bytes, std::align_val_t alignment)
{
    conformance::CountAllocation();
    const auto step = static_cast<std::size_t>(alignment);
    return conformance::Counted(std::aligned_alloc(step, (bytes + step) / step * step)); // never 0 bytes
}

void* operator new[](std::size_t bytes)
{
    return operator new(bytes);
}

void* operator new[](std::size_t bytes, std::align_val_t alignment)
{
    return operator new(bytes, alignment);
}

void* operator new(std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept
{
    try {
        return operator new(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept
{
    try {
        return operator new(bytes, alignment);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t bytes, const std::nothrow_t& tag) noexcept
{
    return operator new(bytes, tag);
}

void* operator new[](std::size_t bytes, std::align_val_t alignment, const std::nothrow_t& tag) noexcept
{
    return operator new(bytes, alignment, tag);
}

void operator delete(void* block) noexcept
{
    conformance::Free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    conformance::Free(block);
}

void operator delete(void* block, std::align_val_t) noexcept
{
    conformance::Free(block);
}

void operator delete(void* block, std::size_t, std::align_val_t) noexcept
{
    conformance::Free(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept
{
    conformance::Free(block);
}

void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept
{
    conformance::Free(block);
}

void operator delete[](void* block) noexcept
{
    conformance::Free(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    conformance::Free(block);
}

void operator delete[](void* block, std::align_val_t) noexcept
{
    conformance::Free(block);
}

void operator delete[](void* block, std::size_t, std::align_val_t) noexcept
{
    conformance::Free(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    conformance::Free(block);
}

void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept
{
    conformance::Free(block);
}
