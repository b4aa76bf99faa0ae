/// Memory that vector code and encoders may read a little past the end of.
#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace tessel::exporting {

/// Bytes that start on a multiple of 64, with 64 spare zeroed ones behind; the rest is undefined. Move-only.
class AlignedBuffer {
public:
    static constexpr std::size_t kAlignment = 64;

    AlignedBuffer() = default;
    explicit AlignedBuffer(std::size_t size)
        : mBytes(static_cast<std::byte*>(::operator new[](size + kAlignment, std::align_val_t{kAlignment}))),
          mSize(size)
    {
        for (std::size_t i = 0; i < kAlignment; ++i) {
            mBytes[mSize + i] = std::byte{0};
        }
    }

    [[nodiscard]] std::byte* Bytes() const noexcept { return mBytes.get(); }
    [[nodiscard]] std::size_t Size() const noexcept { return mSize; }

    template <class Sample>
    [[nodiscard]] Sample* As() const noexcept
    {
        return reinterpret_cast<Sample*>(mBytes.get());
    }

private:
    struct Free {
        void operator()(std::byte* bytes) const noexcept
        {
            ::operator delete[](bytes, std::align_val_t{kAlignment});
        }
    };
    std::unique_ptr<std::byte[], Free> mBytes;
    std::size_t mSize = 0;
};

} // namespace tessel::exporting
