#include "Fault.h"

#include <tessel/damage/picture/GeometryFaults.h>
#include <tessel/verify/catalogue/Names.h>

#include <algorithm>
#include <array>

namespace tessel::damage {
namespace {

namespace id = verify::id;

/// A fault that looks at one picture alone.
template <class Change>
void AddPictureFault(DamagePlan& plan, Change change)
{
    plan.pictures.emplace_back(
        [change](const PictureAt& before, std::int64_t position) { return change(before(position)); });
}

void AnnounceSize(DamagePlan& plan, std::int32_t width, std::int32_t height)
{
    plan.width = width;
    plan.height = height;
    plan.announcements.emplace_back([=](exporting::OutputPlan& output) {
        if (output.video) {
            output.video->geometry.width = width;
            output.video->geometry.height = height;
        }
    });
}

void Scale(DamagePlan& plan, FaultValue& value, Truth&)
{
    const double factor = value.Number(0.05, 8);
    // Even, so that every layout can have the size.
    const auto even = [&](std::int32_t size) {
        return std::max(static_cast<std::int32_t>(size * factor / 2 + 0.5) * 2, 2);
    };
    const std::int32_t width = even(plan.width);
    const std::int32_t height = even(plan.height);
    AddPictureFault(plan, [=](const WorkPicture& picture) { return Scaled(picture, width, height); });
    AnnounceSize(plan, width, height);
}

Margins ReadMargins(FaultValue& value, std::int32_t mostX, std::int32_t mostY)
{
    Margins margins;
    margins.left = margins.right = margins.top = margins.bottom =
        static_cast<std::int32_t>(value.Whole(0, std::max(mostX, mostY)));
    if (!value.IsAtEnd()) {
        margins.right = static_cast<std::int32_t>(value.Whole(0, mostX));
        margins.top = static_cast<std::int32_t>(value.Whole(0, mostY));
        margins.bottom = static_cast<std::int32_t>(value.Whole(0, mostY));
    }
    for (const std::int32_t margin : {margins.left, margins.right, margins.top, margins.bottom}) {
        if (margin % 2 != 0) {
            value.Refuse("margins are even, so that chroma stays in its place");
        }
    }
    return margins;
}

void Crop(DamagePlan& plan, FaultValue& value, Truth&)
{
    const Margins margins = ReadMargins(value, plan.width / 2 - 1, plan.height / 2 - 1);
    const std::int32_t width = plan.width - margins.left - margins.right;
    const std::int32_t height = plan.height - margins.top - margins.bottom;
    if (width < 2 || height < 2) {
        value.Refuse("nothing of the picture would be left");
    }
    AddPictureFault(plan, [=](const WorkPicture& picture) { return Cropped(picture, margins); });
    AnnounceSize(plan, width, height);
}

void Pad(DamagePlan& plan, FaultValue& value, Truth&)
{
    const Margins margins = ReadMargins(value, 4096, 4096);
    AddPictureFault(plan, [=](const WorkPicture& picture) { return Padded(picture, margins); });
    AnnounceSize(plan, plan.width + margins.left + margins.right, plan.height + margins.top + margins.bottom);
}

void Shift(DamagePlan& plan, FaultValue& value, Truth&)
{
    const double right = value.Number(-4096, 4096);
    const double down = value.IsAtEnd() ? 0 : value.Number(-4096, 4096);
    AddPictureFault(plan, [=](const WorkPicture& picture) { return Shifted(picture, right, down); });
}

void Flip(DamagePlan& plan, FaultValue& value, Truth&)
{
    const bool isUpright = value.OneOf({"left-right", "top-bottom"}) == 1;
    AddPictureFault(plan, [=](const WorkPicture& picture) {
        return isUpright ? FlippedTopBottom(picture) : FlippedLeftRight(picture);
    });
}

void Turn(DamagePlan& plan, FaultValue& value, Truth&)
{
    const int quarters = 1 + static_cast<int>(value.OneOf({"90", "180", "270"}));
    AddPictureFault(plan, [=](const WorkPicture& picture) { return Turned(picture, quarters); });
    if (quarters != 2) {
        AnnounceSize(plan, plan.height, plan.width);
    }
}

constexpr std::array kGeometryFaults = std::to_array<Fault>({
    {id::kGeometryScaled, "FACTOR", "0.5", "the picture, and with it the file, has another size", Scale},
    {id::kGeometryCropped, "PIXELS[:RIGHT:TOP:BOTTOM]", "16",
     "the picture's edges are cut off; one number is for all four", Crop},
    {id::kGeometryPadded, "PIXELS[:RIGHT:TOP:BOTTOM]", "16",
     "black edges are put around the picture; one number is for all four", Pad},
    {id::kGeometryShifted, "RIGHT[:DOWN]", "2.5",
     "the content is moved by so many pixels, which may be fractions; edges repeat", Shift},
    {id::kGeometryFlipped, "left-right|top-bottom", "left-right", "the picture is mirrored", Flip},
    {id::kGeometryRotated, "90|180|270", "180", "the picture is turned clockwise", Turn},
});

} // namespace

std::span<const Fault> GeometryFaults() noexcept
{
    return kGeometryFaults;
}

} // namespace tessel::damage
