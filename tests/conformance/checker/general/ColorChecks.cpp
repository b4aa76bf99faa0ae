/// Colour information, where the importer gives it.

#include "Clip.h"

namespace conformance {

namespace {

void* const kIndexOne = reinterpret_cast<void*>(1);

void ColorCodesAreCodes(Plugin& plugin)
{
    const Clip clip(plugin);
    GuardedRecord color;
    color.Put(offsetof(ksColorRec, instance), clip.Instance());
    const std::int32_t answer =
        plugin.Request(ksSelectorColorInformation, ForeignStdParms(), nullptr, color.Data());
    if (answer != ksResultServed) {
        color.ExpectUnchanged("a colour request that is not served");
        throw Skipped("the importer gives no colour codes (answer " + std::to_string(answer) + ")");
    }
    color.ExpectChangedOnly({{offsetof(ksColorRec, kind), 4}, {offsetof(ksColorRec, codes), 16}},
                            "the colour request");
    const ksSEIColorCodesRec codes = color.Get<ksSEIColorCodesRec>(offsetof(ksColorRec, codes));
    for (const std::int32_t code : {codes.primaries, codes.transfer, codes.matrix}) {
        Expect(code >= 0 && code <= 255,
               "a code is " + std::to_string(code) + ", outside ITU-T H.273's 0..255");
    }
    Expect(codes.fullRange == 0 || codes.fullRange == 1,
           "the range flag is " + std::to_string(codes.fullRange));
}

void ColorCodesEnd(Plugin& plugin)
{
    const Clip clip(plugin);
    GuardedRecord color;
    color.Put(offsetof(ksColorRec, instance), clip.Instance());
    Expect(plugin.Request(ksSelectorColorInformation, ForeignStdParms(), kIndexOne, color.Data()) !=
               ksResultServed,
           "there is a second entry of colour information");
    color.ExpectUnchanged("the colour request with index 1");
}

} // namespace

std::vector<Check> ColorChecks()
{
    return {
        {"color.codes", "Colour codes lie in the range of ITU-T H.273, and only their fields are written",
         ColorCodesAreCodes},
        {"color.end", "Colour information has no entry at index 1, and asking for it writes nothing",
         ColorCodesEnd},
    };
}

} // namespace conformance
