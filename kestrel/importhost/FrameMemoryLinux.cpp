#include "FrameMemory.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>
#include <utility>

namespace importhost {
namespace {

constexpr std::size_t kHugePageThreshold = std::size_t{32} << 20U;
constexpr std::size_t kHugePage = std::size_t{2} << 20U;

} // namespace

FrameMemory::FrameMemory(std::size_t byteCount) : mSize(byteCount)
{
    const bool huge = byteCount > kHugePageThreshold;
    mMappingSize = byteCount + (huge ? kHugePage : 0);
    void* mapping = mmap(nullptr, mMappingSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) {
        throw std::bad_alloc();
    }
    mMapping = static_cast<std::byte*>(mapping);
    const auto address = reinterpret_cast<std::uintptr_t>(mapping);
    mData = mMapping + (huge ? (kHugePage - address % kHugePage) % kHugePage : 0);
    if (huge) {
        // Only advice: a kernel without huge pages serves small ones.
        (void)madvise(mData, mSize, MADV_HUGEPAGE);
    }
}

FrameMemory::~FrameMemory()
{
    if (mMapping != nullptr) {
        munmap(mMapping, mMappingSize);
    }
}

FrameMemory::FrameMemory(FrameMemory&& other) noexcept
    : mData(std::exchange(other.mData, nullptr)), mSize(std::exchange(other.mSize, 0)),
      mMapping(std::exchange(other.mMapping, nullptr)), mMappingSize(std::exchange(other.mMappingSize, 0))
{
}

FrameMemory& FrameMemory::operator=(FrameMemory&& other) noexcept
{
    std::swap(mData, other.mData);
    std::swap(mSize, other.mSize);
    std::swap(mMapping, other.mMapping);
    std::swap(mMappingSize, other.mMappingSize);
    return *this;
}

} // namespace importhost
