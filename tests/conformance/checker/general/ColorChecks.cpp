/// Colour information, where the importer gives it.

#include "Clip.h"

namespace conformance {

namespace {

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
    const auto codes = color.Get<ksSEIColorCodesRec>(offsetof(ksColorRec, codes));
    constexpr auto kUntouched = static_cast<std::int32_t>(0xCCCCCCCC); // a code that the importer cannot tell
    for (const std::int32_t code : {codes.primaries, codes.transfer, codes.matrix}) {
        Expect((code >= 0 && code <= 255) || code == kUntouched,
               "a code is " + std::to_string(code) + ", outside ITU-T H.273's 0..255");
    }
    Expect(codes.fullRange == 0 || codes.fullRange == 1 || codes.fullRange == kUntouched,
           "the range flag is " + std::to_string(codes.fullRange));
}

void ColorCodesEnd(Plugin& plugin)
{
    const Clip clip(plugin);
    GuardedRecord color;
    color.Put(offsetof(ksColorRec, instance), clip.Instance());
    const std::int32_t answer =
        plugin.Request(ksSelectorColorInformation, ForeignStdParms(), kIndexOne, color.Data());
    Expect(answer == ksResultNoSuchColorIndex || answer == ksResultUnsupported,
           "index 1 of the colour information is answered " + std::to_string(answer));
    color.ExpectUnchanged("the colour request with index 1");
}

} // namespace

std::vector<Check> ColorChecks()
{
    return {
        {"color.codes", "Colour codes lie in the range of ITU-T H.273, and only their fields are written",
         ColorCodesAreCodes},
        {"color.end", "Index 1 of the colour information answers 19, or 3, and writes nothing", ColorCodesEnd},
    };
}

} // namespace conformance
