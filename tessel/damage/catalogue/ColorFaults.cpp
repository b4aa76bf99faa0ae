#include "Fault.h"

#include <tessel/damage/picture/ColorFaults.h>
#include <tessel/verify/catalogue/Names.h>

#include <array>

namespace tessel::damage {
namespace {

namespace id = verify::id;
using exporting::Matrix;

/// A fault that changes each picture in place.
template <class Change>
void AddColorFault(DamagePlan& plan, Change change)
{
    plan.pictures.emplace_back([change](const PictureAt& before, std::int64_t position) {
        WorkPicture picture = before(position);
        change(picture);
        return picture;
    });
}

void ChangeAlphaOf(DamagePlan& plan, FaultValue& value, Truth&)
{
    constexpr std::array kFaults{AlphaFault::Opaque, AlphaFault::Transparent, AlphaFault::Premultiplied};
    const AlphaFault fault = kFaults[value.OneOf({"opaque", "transparent", "premultiplied"})];
    AddColorFault(plan, [=](WorkPicture& picture) { ChangeAlpha(picture, fault); });
}

constexpr std::array kColorFaults = std::to_array<Fault>({
    {id::kColorMatrix, "601|709|2020|240", "601",
     "the codes are made with another matrix than the file says; R'G'B' has passed through both",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         constexpr std::array kMatrices{Matrix::Smpte170M, Matrix::Bt709, Matrix::Bt2020, Matrix::Smpte240M};
         const Matrix wrong = kMatrices[value.OneOf({"601", "709", "2020", "240"})];
         AddColorFault(plan, [=](WorkPicture& picture) { UseMatrix(picture, wrong); });
     }},
    {id::kColorRange, "squeezed|expanded", "squeezed",
     "limited range is made twice, or taken for full range and expanded",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const RangeFault fault =
             value.OneOf({"squeezed", "expanded"}) == 0 ? RangeFault::Squeezed : RangeFault::Expanded;
         AddColorFault(plan, [=](WorkPicture& picture) { ChangeRange(picture, fault); });
     }},
    {id::kColorClipped, "LOWEST:HIGHEST", "0:1", "values are cut at two levels, of 0 for black and 1 for white",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const double lowest = value.Number(-1, 2);
         const double highest = value.Number(lowest, 2);
         AddColorFault(plan, [=](WorkPicture& picture) { Clip(picture, lowest, highest); });
     }},
    {id::kColorChannels, "", "", "red and blue change places",
     [](DamagePlan& plan, FaultValue&, Truth&) { AddColorFault(plan, SwapRedAndBlue); }},
    {id::kColorChromaSwapped, "", "", "Cb and Cr change places",
     [](DamagePlan& plan, FaultValue&, Truth&) { AddColorFault(plan, SwapChroma); }},
    {id::kColorTransfer, "twice|linear|gamma2.2|gamma2.4|srgb", "twice",
     "a transfer curve is applied once more, or taken away",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         constexpr std::array kFaults{TransferFault::Twice, TransferFault::Linear, TransferFault::Gamma22,
                                      TransferFault::Gamma24, TransferFault::Srgb};
         const TransferFault fault = kFaults[value.OneOf({"twice", "linear", "gamma2.2", "gamma2.4", "srgb"})];
         AddColorFault(plan, [=](WorkPicture& picture) { ChangeTransfer(picture, fault); });
     }},
    {id::kColorGain, "FACTOR", "0.9", "R'G'B' is multiplied",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const double factor = value.Number(0, 16);
         AddColorFault(plan, [=](WorkPicture& picture) { MultiplyBy(picture, factor); });
     }},
    {id::kColorOffset, "AMOUNT", "0.05", "so much is added to R'G'B', 1 being from black to white",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const double amount = value.Number(-1, 1);
         AddColorFault(plan, [=](WorkPicture& picture) { Add(picture, amount); });
     }},
    {id::kColorSaturation, "FACTOR", "0.8", "chroma is multiplied",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const double factor = value.Number(0, 16);
         AddColorFault(plan, [=](WorkPicture& picture) { ChangeSaturation(picture, factor); });
     }},
    {id::kColorHue, "DEGREES", "10", "chroma is turned, from Cb towards Cr",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const double degrees = value.Number(-360, 360);
         AddColorFault(plan, [=](WorkPicture& picture) { TurnHue(picture, degrees); });
     }},
    {id::kColorDepth, "BITS", "6", "codes are cut down to so many bits, without dither",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const auto bits = static_cast<int>(value.Whole(1, 15));
         AddColorFault(plan, [=](WorkPicture& picture) { KeepBits(picture, bits); });
     }},
    {id::kColorSubsampling, "422|420|411|400", "420", "chroma is thinned and interpolated again",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         constexpr std::array kKinds{Thinning::To422, Thinning::To420, Thinning::To411, Thinning::To400};
         const Thinning thinning = kKinds[value.OneOf({"422", "420", "411", "400"})];
         AddColorFault(plan, [=](WorkPicture& picture) { ThinChroma(picture, thinning); });
     }},
    {id::kColorSiting, "RIGHT[:DOWN]", "0.5", "chroma is moved by so many luma pixels",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const double right = value.Number(-16, 16);
         const double down = value.IsAtEnd() ? 0 : value.Number(-16, 16);
         AddColorFault(plan, [=](WorkPicture& picture) { ShiftChroma(picture, right, down); });
     }},
    {id::kColorAlpha, "opaque|transparent|premultiplied", "opaque",
     "alpha is replaced, or colour multiplied by it once more", ChangeAlphaOf},
});

} // namespace

std::span<const Fault> ColorFaults() noexcept
{
    return kColorFaults;
}

} // namespace tessel::damage
