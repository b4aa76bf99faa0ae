#include "FrameSuites.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace importhost {
namespace {

enum Status : std::int32_t { kOk = 0, kNull = -1, kWrongAccess = -2, kRefused = -3 };

std::int32_t CreateFrame(ksFrameHandle* frame, std::int32_t access, std::uint32_t pixelFormat,
                         std::int32_t width, std::int32_t height, bool /*reserved5*/,
                         std::int32_t /*reserved6*/, std::uint32_t /*parNumerator*/,
                         std::uint32_t /*parDenominator*/, void* extra16)
{
    if (frame == nullptr) {
        return kNull;
    }
    *frame = nullptr;
    if (access != ksFrameAccessReadWrite) {
        return kWrongAccess;
    }
    // A frame belongs to the request it is made for; outside a request it would never be freed.
    FrameRequest* request = FrameRequest::FromToken(extra16);
    if (request == nullptr) {
        return kRefused;
    }
    *frame = request->Create(pixelFormat, width, height);
    return *frame != nullptr ? kOk : kRefused;
}

std::int32_t GetPixels(ksFrameHandle frame, std::int32_t access, void** pixels)
{
    if (frame == nullptr || pixels == nullptr) {
        return kNull;
    }
    if (access != ksFrameAccessReadWrite) {
        return kWrongAccess;
    }
    *pixels = static_cast<const FrameBuffer*>(frame)->Pixels();
    return kOk;
}

std::int32_t GetBounds(ksFrameHandle frame, std::int32_t bounds[4])
{
    if (frame == nullptr || bounds == nullptr) {
        return kNull;
    }
    const FrameLayout& layout = static_cast<const FrameBuffer*>(frame)->Layout();
    bounds[0] = 0;
    bounds[1] = 0;
    bounds[2] = layout.width;
    bounds[3] = layout.height;
    return kOk;
}

std::int32_t GetRowBytes(ksFrameHandle frame, std::int32_t* rowBytes)
{
    if (frame == nullptr || rowBytes == nullptr) {
        return kNull;
    }
    *rowBytes = static_cast<const FrameBuffer*>(frame)->Layout().rowBytes;
    return kOk;
}

} // namespace

FrameRequest::FrameRequest(std::shared_ptr<FramePool> pool, NewFrameContent content, std::uint8_t pattern,
                           const FrameDestination* destination)
    : mPool(std::move(pool)), mContent(content), mPattern(pattern), mDestination(destination)
{
}

std::array<std::uint8_t, 16> FrameRequest::Token() noexcept
{
    // The address and its complement: bytes that a plug-in garbled are not taken for a request.
    const auto address = reinterpret_cast<std::uintptr_t>(this);
    const std::array<std::uint64_t, 2> words{address, ~std::uint64_t{address}};
    std::array<std::uint8_t, 16> token{};
    std::memcpy(token.data(), words.data(), token.size());
    return token;
}

FrameRequest* FrameRequest::FromToken(const void* token) noexcept
{
    if (token == nullptr) {
        return nullptr;
    }
    std::array<std::uint64_t, 2> words{};
    std::memcpy(words.data(), token, sizeof words);
    return words[0] == ~words[1] ? reinterpret_cast<FrameRequest*>(static_cast<std::uintptr_t>(words[0]))
                                 : nullptr;
}

std::shared_ptr<FrameBuffer> FrameRequest::NewBuffer(const FrameLayout& layout)
{
    if (mDestination == nullptr || !Fits(layout, *mDestination)) {
        return std::make_shared<FrameBuffer>(mPool, layout);
    }
    auto buffer = std::make_shared<FrameBuffer>(layout, *mDestination);
    mDestination = nullptr; // a second frame of the request must not paint over this one
    return buffer;
}

ksFrameHandle FrameRequest::Create(std::uint32_t pixelFormat, std::int32_t width, std::int32_t height) noexcept
{
    const auto layout = LayOutFrame(pixelFormat, width, height, mRefusal);
    if (!layout) {
        return nullptr;
    }
    try {
        mFrames.push_back(NewBuffer(*layout));
    } catch (const std::bad_alloc&) {
        mRefusal = FrameRefusal::OutOfMemory;
        return nullptr;
    }
    FrameBuffer& frame = *mFrames.back();
    if (mContent == NewFrameContent::Pattern) {
        frame.Fill(mPattern);
    } else if (mContent == NewFrameContent::Zero && !frame.IsZero()) {
        frame.Fill(0);
    }
    return &frame;
}

std::shared_ptr<const FrameBuffer> FrameRequest::TakeFrame(ksFrameHandle handle) noexcept
{
    const auto found = std::find_if(mFrames.begin(), mFrames.end(),
                                    [handle](const auto& frame) { return frame.get() == handle; });
    return found == mFrames.end() ? nullptr : std::exchange(*found, nullptr);
}

const ksFrameCreatorSuite4& FrameCreatorSuite4() noexcept
{
    static constexpr ksFrameCreatorSuite4 kSuite = {{}, &CreateFrame};
    return kSuite;
}

const ksFrameSuite1& FrameSuite1() noexcept
{
    static constexpr ksFrameSuite1 kSuite = {nullptr, &GetPixels, &GetBounds, &GetRowBytes};
    return kSuite;
}

const void* PixelFormatSuite1() noexcept
{
    static constexpr ksUnknownFunction kSuite[8] = {};
    return kSuite;
}

} // namespace importhost
