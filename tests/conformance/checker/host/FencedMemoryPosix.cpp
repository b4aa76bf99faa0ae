#include "FencedMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace conformance {

FencedMemory::FencedMemory()
{
    const std::size_t page = std::max<std::size_t>(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), kBytes);
    mWholeBytes = 3 * page;
    void* whole = mmap(nullptr, mWholeBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (whole == MAP_FAILED) {
        throw std::runtime_error("no fenced memory can be had");
    }
    mFence = static_cast<std::uint8_t*>(whole);
    mBegin = mFence + page;
    mEnd = mBegin + page;
    if (mprotect(mBegin, page, PROT_READ | PROT_WRITE) != 0) {
        munmap(mFence, mWholeBytes);
        throw std::runtime_error("no fenced memory can be had");
    }
    std::fill(mBegin, mEnd, std::uint8_t{0xCC});
}

FencedMemory::~FencedMemory()
{
    munmap(mFence, mWholeBytes);
}

} // namespace conformance
