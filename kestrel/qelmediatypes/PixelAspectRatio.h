/// Pixel aspect ratios and the host's thirteen named ones. Threads: [any-thread].
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace qelmediatypes {

/// Width of a pixel to its height. The two numbers are kept as given, not reduced; two ratios are equal
/// when both numbers are.
class PixelAspectRatio {
public:
    constexpr PixelAspectRatio() noexcept = default;
    constexpr PixelAspectRatio(std::uint32_t numerator, std::uint32_t denominator) noexcept
        : mNumerator(numerator), mDenominator(denominator)
    {
    }

    [[nodiscard]] constexpr std::uint32_t GetNumerator() const noexcept { return mNumerator; }
    [[nodiscard]] constexpr std::uint32_t GetDenominator() const noexcept { return mDenominator; }
    constexpr bool operator==(const PixelAspectRatio&) const = default;

private:
    std::uint32_t mNumerator = 1;
    std::uint32_t mDenominator = 1;
};

// ITU-T H.264, table E-1.
inline constexpr PixelAspectRatio kPixelAspectRatio_Square{1, 1};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVNTSC{10, 11};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVNTSCWide{40, 33};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVPAL{12, 11};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVPALWide{16, 11};
inline constexpr PixelAspectRatio kPixelAspectRatio_Anamorphic{2, 1};
inline constexpr PixelAspectRatio kPixelAspectRatio_HDAnamorphic1080{4, 3};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVCProHD{3, 2};
// What older programs wrote for the same rasters; kept, because files with them exist.
inline constexpr PixelAspectRatio kPixelAspectRatio_DVNTSC_Incorrect{9, 10};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVNTSCWide_Incorrect{6, 5};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVPAL_Incorrect{16, 15};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVPAL_TooPrecise{128, 117};
inline constexpr PixelAspectRatio kPixelAspectRatio_DVPALWide_Incorrect{64, 45};

/// A ratio under its constant's name.
struct NamedPixelAspectRatio {
    PixelAspectRatio ratio;
    std::string_view constant; ///< "kPixelAspectRatio_Square"
};

/// All of the above, in the host's order.
inline constexpr std::array kNamedPixelAspectRatios = {
    NamedPixelAspectRatio{kPixelAspectRatio_Square, "kPixelAspectRatio_Square"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVNTSC, "kPixelAspectRatio_DVNTSC"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVNTSCWide, "kPixelAspectRatio_DVNTSCWide"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVPAL, "kPixelAspectRatio_DVPAL"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVPALWide, "kPixelAspectRatio_DVPALWide"},
    NamedPixelAspectRatio{kPixelAspectRatio_Anamorphic, "kPixelAspectRatio_Anamorphic"},
    NamedPixelAspectRatio{kPixelAspectRatio_HDAnamorphic1080, "kPixelAspectRatio_HDAnamorphic1080"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVCProHD, "kPixelAspectRatio_DVCProHD"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVNTSC_Incorrect, "kPixelAspectRatio_DVNTSC_Incorrect"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVNTSCWide_Incorrect, "kPixelAspectRatio_DVNTSCWide_Incorrect"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVPAL_Incorrect, "kPixelAspectRatio_DVPAL_Incorrect"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVPAL_TooPrecise, "kPixelAspectRatio_DVPAL_TooPrecise"},
    NamedPixelAspectRatio{kPixelAspectRatio_DVPALWide_Incorrect, "kPixelAspectRatio_DVPALWide_Incorrect"},
};

} // namespace qelmediatypes
