/// What the dialog's popups offer, and the settings behind it.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <kestrel/qelmediatypes/TickTime.h>
#include <kestrel/qelmediatypes/color/ColorSpace.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace ImporterTessel {

struct FrameRateChoice {
    qelmediatypes::FrameRate rate;
    std::string_view label;
};

/// The host's own lists: names are those of its constants.
using PixelFormatChoice = BR::PixelFormatInfo;
using PixelAspectChoice = qelmediatypes::NamedPixelAspectRatio;

struct IdentifierFormatChoice {
    std::int32_t format; ///< `IdentifierFormat`
    std::string_view label;
};

/// The tables; a popup item's index is the index here. Static storage. Threads: [thread-safe]. @{
[[nodiscard]] std::span<const FrameRateChoice> FrameRateChoices() noexcept;     ///< 14
[[nodiscard]] std::span<const PixelFormatChoice> PixelFormatChoices() noexcept; ///< 48
[[nodiscard]] std::span<const PixelAspectChoice> PixelAspectChoices() noexcept; ///< 13
/// @}

/// Lists whose index is itself the setting. @{
[[nodiscard]] std::span<const std::string_view> FieldTypeLabels() noexcept;
[[nodiscard]] std::span<const std::string_view> RenderTypeLabels() noexcept;
[[nodiscard]] std::span<const std::string_view> ColorSlotLabels() noexcept;
/// @}

/// The formats offered for a host audio channel type: two for 5.1, two for stereo, none for any other.
[[nodiscard]] std::span<const IdentifierFormatChoice>
IdentifierFormatChoices(std::int32_t channelType) noexcept;

/// The colour spaces on offer, asked of the host at each call.
[[nodiscard]] std::vector<qelmediatypes::color::ColorSpace> ColorSpaceChoices();

/// The entry of `table` at a popup's index, null where that lies outside it: the caller then leaves the
/// settings alone.
template <class Choice>
[[nodiscard]] const Choice* ChoiceAt(std::span<const Choice> table, int index) noexcept
{
    return index >= 0 && static_cast<std::size_t>(index) < table.size()
               ? &table[static_cast<std::size_t>(index)]
               : nullptr;
}

} // namespace ImporterTessel
