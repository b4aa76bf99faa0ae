#include "PixelOrder.h"

#include <bit>
#include <cstring>

namespace tessel::exporting {
namespace {

constexpr std::size_t kSourceBytes = 4;

static_assert(std::endian::native == std::endian::little, "a pixel's first byte is its word's lowest");

/// A `PixelOrder` as shifts of a pixel's word, which compilers turn into vector code.
class WordOrder {
public:
    explicit WordOrder(const PixelOrder& order) noexcept
    {
        for (std::size_t i = 0; i < kSourceBytes; ++i) {
            if (order.from[i] == PixelOrder::kOpaque) {
                mFilled |= 0xFFU << (8 * i);
            } else {
                mShifts[i] = 8U * order.from[i];
            }
        }
    }

    [[nodiscard]] std::uint32_t operator()(std::uint32_t pixel) const noexcept
    {
        return ((pixel >> mShifts[0]) & 0xFFU) | (((pixel >> mShifts[1]) & 0xFFU) << 8) |
               (((pixel >> mShifts[2]) & 0xFFU) << 16) | ((pixel >> mShifts[3]) << 24) | mFilled;
    }

private:
    std::array<std::uint32_t, kSourceBytes> mShifts{};
    std::uint32_t mFilled = 0;
};

std::uint32_t PixelAt(const std::byte* source) noexcept
{
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, source, kSourceBytes);
    return pixel;
}

} // namespace

std::optional<PixelOrder> PixelOrderFor(const SourceInfo& source, const LayoutInfo& target) noexcept
{
    if (source.kind.storage != Storage::Interleaved8 || target.planes != 1 || target.type != SampleType::U8 ||
        target.family != source.kind.family || target.chromaShiftX != 0) {
        return std::nullopt;
    }
    PixelOrder order;
    order.bytes = target.components[0].step;
    for (std::size_t i = 0; i < target.components.size(); ++i) {
        if (target.components[i].plane >= 0 && source.components[i].plane >= 0) {
            order.from[target.components[i].offset] = source.components[i].offset;
        }
    }
    return order;
}

void ReorderRow(const std::byte* source, std::int32_t width, const PixelOrder& order,
                std::byte* target) noexcept
{
    const WordOrder reordered(order);
    if (order.bytes == static_cast<int>(kSourceBytes)) {
        for (std::int32_t x = 0; x < width; ++x) {
            const std::uint32_t pixel =
                reordered(PixelAt(source + x * static_cast<std::ptrdiff_t>(kSourceBytes)));
            std::memcpy(target + x * static_cast<std::ptrdiff_t>(kSourceBytes), &pixel, kSourceBytes);
        }
        return;
    }
    // A whole word each: the next pixel replaces the byte too many, so the last one is written without it.
    for (std::int32_t x = 0; x < width; ++x, source += kSourceBytes, target += order.bytes) {
        const std::uint32_t pixel = reordered(PixelAt(source));
        std::memcpy(target, &pixel, x + 1 < width ? kSourceBytes : static_cast<std::size_t>(order.bytes));
    }
}

} // namespace tessel::exporting
