#include "Fault.h"

#include <tessel/damage/picture/FieldFaults.h>
#include <tessel/verify/catalogue/Names.h>

#include <array>

namespace tessel::damage {
namespace {

namespace id = verify::id;
using importhost::FieldOrder;

Parity FirstField(const DamagePlan& plan) noexcept
{
    return plan.facts.Order() == FieldOrder::LowerFirst ? Parity::Lower : Parity::Upper;
}

Parity ReadParity(FaultValue& value)
{
    return value.OneOf({"upper", "lower"}) == 0 ? Parity::Upper : Parity::Lower;
}

/// The lines of `parity` from one picture, the others from another.
WorkPicture Weave(Parity parity, const WorkPicture& ofParity, const WorkPicture& others)
{
    return parity == Parity::Upper ? Woven(ofParity, others) : Woven(others, ofParity);
}

void RequireInterlaced(const DamagePlan& plan, const FaultValue& value)
{
    if (plan.facts.Order() == FieldOrder::Progressive) {
        value.Refuse("the clip is progressive: only interlaced clips have fields");
    }
}

void Announce(DamagePlan& plan, FieldOrder order)
{
    plan.announcements.emplace_back([order](exporting::OutputPlan& output) {
        if (output.video) {
            output.video->geometry.order = order;
        }
    });
}

void Bob(DamagePlan& plan, FaultValue& value, Truth&)
{
    RequireInterlaced(plan, value);
    constexpr std::array kTwice{2};
    plan.order.Pulldown(kTwice);
    const Parity first = FirstField(plan);
    plan.pictures.emplace_back([first](const PictureAt& before, std::int64_t position) {
        const bool isFirst = position % 2 == 0;
        return LineDoubled(before(position),
                           isFirst == (first == Parity::Upper) ? Parity::Upper : Parity::Lower);
    });
    ChangeRate(plan, std::int64_t{plan.described.timeScale} * 2, plan.described.sampleSize);
    Announce(plan, FieldOrder::Progressive);
}

constexpr std::array kFieldFaults = std::to_array<Fault>({
    {id::kFieldsSwapped, "", "", "the fields exchange their lines",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         RequireInterlaced(plan, value);
         plan.pictures.emplace_back([](const PictureAt& before, std::int64_t position) {
             return WithFieldsSwapped(before(position));
         });
     }},
    {id::kFieldsShifted, "", "", "the first field of each picture comes from the next frame",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         RequireInterlaced(plan, value);
         plan.pictures.emplace_back([first = FirstField(plan)](const PictureAt& before, std::int64_t position) {
             return Weave(first, before(position + 1), before(position));
         });
     }},
    {id::kFieldsBlended, "", "", "both fields become their mean",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         RequireInterlaced(plan, value);
         plan.pictures.emplace_back([](const PictureAt& before, std::int64_t position) {
             return WithFieldsBlended(before(position));
         });
     }},
    {id::kFieldsBobbed, "", "", "each field becomes a picture, its lines doubled, at twice the rate", Bob},
    {id::kFieldsLost, "upper|lower", "lower", "one field is lost, the other one's lines are doubled",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         RequireInterlaced(plan, value);
         const Parity kept = ReadParity(value) == Parity::Upper ? Parity::Lower : Parity::Upper;
         plan.pictures.emplace_back([kept](const PictureAt& before, std::int64_t position) {
             return LineDoubled(before(position), kept);
         });
     }},
    {id::kFieldsProgressive, "upper|lower", "upper",
     "the clip is made progressive: one field is kept, the other one's lines are interpolated",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         RequireInterlaced(plan, value);
         const Parity kept = ReadParity(value);
         plan.pictures.emplace_back([kept](const PictureAt& before, std::int64_t position) {
             return Deinterlaced(before(position), kept);
         });
         Announce(plan, FieldOrder::Progressive);
     }},
    {id::kFieldsInterlaced, "upper|lower", "upper",
     "a progressive clip is made interlaced: the second field of each picture comes from the next frame",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         if (plan.facts.Order() != FieldOrder::Progressive) {
             value.Refuse("the clip is interlaced already");
         }
         const Parity first = ReadParity(value);
         plan.pictures.emplace_back([first](const PictureAt& before, std::int64_t position) {
             return Weave(first, before(position), before(position + 1));
         });
         Announce(plan, first == Parity::Upper ? FieldOrder::UpperFirst : FieldOrder::LowerFirst);
     }},
});

} // namespace

std::span<const Fault> FieldFaults() noexcept
{
    return kFieldFaults;
}

} // namespace tessel::damage
