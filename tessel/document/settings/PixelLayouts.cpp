#include "PixelLayouts.h"

#include <kestrel/pixmill/PixelFormatCodes.h>
#include <kestrel/qelcore/text/LetterCase.h>

#include <algorithm>

namespace tessel::document {
namespace {

/// "KsPixelFormat_UYVY_422_8u_709" gives "uyvy", "KsPixelFormat_BGRA_4444_32f_Linear" "bgra-float-linear": what
/// is left of the constant when prefix, matrix, and what the layout implies are taken away.
std::string LayoutName(std::string_view constant)
{
    constexpr std::string_view kPrefix = "KsPixelFormat_";
    std::string name;
    constant.remove_prefix(kPrefix.size());
    while (!constant.empty()) {
        const std::size_t end = std::min(constant.find('_'), constant.size());
        const std::string_view part = constant.substr(0, end);
        constant.remove_prefix(std::min(end + 1, constant.size()));
        if (part == "4444" || part == "422" || part == "601" || part == "709" || part == "8u" ||
            part == "10u" || part == "MPEG2" || part == "PICTURE" || part == "PLANAR") {
            continue;
        }
        // "yuv420" is one word.
        name += name.empty() || part == "420" ? "" : "-";
        name += part == "32f" ? "float" : part;
    }
    return qelcore::text::LowerCase(name);
}

} // namespace

PixelMatrix MatrixOf(BR::PixelFormat format) noexcept
{
    const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(format);
    if ((code & pixmill::kBitYCbCr) == 0) {
        return PixelMatrix::None;
    }
    return (code & pixmill::kBit709) != 0 ? PixelMatrix::Bt709 : PixelMatrix::Bt601;
}

std::vector<PixelLayout> AllPixelLayouts()
{
    std::vector<PixelLayout> layouts;
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const std::string name = LayoutName(info.constant);
        const auto found = std::find_if(layouts.begin(), layouts.end(),
                                        [&name](const PixelLayout& layout) { return layout.name == name; });
        if (found == layouts.end()) {
            layouts.push_back({name, info.format, info.format, {info.constant}});
            continue;
        }
        found->formats.push_back(info.constant);
        (MatrixOf(info.format) == PixelMatrix::Bt709 ? found->with709 : found->with601) = info.format;
    }
    return layouts;
}

PixelMatrix MatrixOfSpace(std::int32_t code) noexcept
{
    constexpr std::int32_t kRgb = 0;
    constexpr std::int32_t kBt709 = 1;
    constexpr std::int32_t kBt601Pal = 5;
    constexpr std::int32_t kBt601Ntsc = 6;
    switch (code) {
    case kBt709:
        return PixelMatrix::Bt709;
    case kBt601Pal:
    case kBt601Ntsc:
        return PixelMatrix::Bt601;
    case kRgb:
    default:
        return PixelMatrix::None;
    }
}

} // namespace tessel::document
