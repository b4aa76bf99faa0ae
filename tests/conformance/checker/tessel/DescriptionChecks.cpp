/// Selector 37: the description of a clip.

#include "Documents.h"
#include "TesselChecks.h"

#include <string>

namespace conformance {

namespace {

const std::vector<Field> kDescribed = {{0, 10}, {12, 2}, {18, 1},   {22, 1}, {34, 8},
                                       {54, 4}, {98, 4}, {162, 24}, {198, 8}};

void DescribesText(Plugin& plugin)
{
    Foreign().legacyTimeScale = 30000;
    Foreign().legacySampleSize = 1001;
    GuardedRecord info;
    const std::string text = Document(R"("mSampleRate": 44100, "mNumChannels": 6,)");
    ExpectEqual(Describe(plugin, text, info), 0, "selector 37");
    info.ExpectChangedOnly(kDescribed, "selector 37");
    ExpectEqual(info.Get<std::uint8_t>(0), 1, "byte 0");
    ExpectEqual(info.Get<std::uint8_t>(1), 1, "byte 1");
    ExpectEqual(info.Get<std::int32_t>(2), 32, "width");
    ExpectEqual(info.Get<std::int32_t>(6), 18, "height");
    ExpectEqual(info.Get<std::uint16_t>(12), 32, "byte 12");
    ExpectEqual(info.Get<std::uint8_t>(18), 0, "field type");
    ExpectEqual(info.Get<std::uint8_t>(22), 1, "byte 22");
    ExpectEqual(info.Get<std::uint32_t>(34), 10, "pixel aspect numerator");
    ExpectEqual(info.Get<std::uint32_t>(38), 11, "pixel aspect denominator");
    ExpectEqual(info.Get<std::uint32_t>(54), 1, "byte 54");
    Expect(info.Get<std::uint32_t>(98) <= 1, "byte 98 is neither 0 nor 1");
    ExpectEqual(info.Get<std::int32_t>(162), 30000, "time scale");
    ExpectEqual(info.Get<std::int32_t>(166), 1001, "sample size");
    ExpectEqual(info.Get<std::int32_t>(170), 25 * 1001, "duration"); // 1 s at 25 frames a second
    ExpectEqual(info.Get<std::int32_t>(174), 6, "channels");
    Expect(info.Get<float>(178) == 44100.0F, "the sample rate is not 44100");
    ExpectEqual(info.Get<std::uint32_t>(182), 6, "byte 182");
    Expect(info.Get<ksInstance>(198) != nullptr, "the slot is null");
    ExpectEqual(static_cast<long long>(Foreign().legacyTicksAsked.size()), 1, "calls of the legacy suite");
    ExpectEqual(Foreign().legacyTicksAsked.front(), 10160640000, "ticks asked of the legacy suite");
    Expect(Foreign().acquired == std::vector<std::string>{"Kestrel Legacy Suite/2"},
           "another suite was acquired");
}

void ThreeFramesAt1001(Plugin& plugin)
{
    Foreign().legacyTimeScale = 30000;
    Foreign().legacySampleSize = 1001;
    GuardedRecord info;
    // 3 frames of 8475667200 ticks.
    std::string text = DocumentWith("mVideoDuration", R"({"ticks": 25427001600})");
    text.replace(text.find("10160640000"), 11, "8475667200");
    ExpectEqual(Describe(plugin, text, info), 0, "selector 37");
    ExpectEqual(info.Get<std::int32_t>(170), 3003, "byte 170");
}

void NoFileNoText(Plugin& plugin)
{
    const std::u16string path = u"/nowhere/clip.tessel";
    GuardedRecord access;
    access.Put(12, path.c_str());
    GuardedRecord info;
    info.Put<ksInstance>(198, nullptr);
    info.Put<void*>(206, nullptr);
    ExpectEqual(plugin.Request(37, ForeignStdParms(), access.Data(), info.Data()), 2, "selector 37");
    info.ExpectChangedOnly({{0, 2}, {198, 8}}, "selector 37");
    ExpectEqual(info.Get<std::uint8_t>(0), 1, "byte 0");
    ExpectEqual(info.Get<std::uint8_t>(1), 1, "byte 1");
}

void ExistingPathIsNotRead(Plugin& plugin)
{
    const TemporaryFolder folder;
    const std::u16string path = Wide(folder.Write("clip.tessel", Document()));
    const std::string text = DocumentWith("mFrameWidth", "99");
    GuardedRecord access;
    access.Put(12, path.c_str());
    GuardedRecord info;
    info.Put<ksInstance>(198, nullptr);
    info.Put(206, text.c_str());
    ExpectEqual(plugin.Request(37, ForeignStdParms(), access.Data(), info.Data()), 0, "selector 37");
    ExpectEqual(info.Get<std::int32_t>(2), 720, "the width, neither the file's 32 nor the text's 99");
    ExpectEqual(info.Get<std::int32_t>(6), 480, "the height");
}

void OpenedFileIsDescribed(Plugin& plugin)
{
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("clip.tessel", DocumentWith("mFieldType", "258"));
    ksInstance instance = nullptr;
    ExpectEqual(OpenFile(plugin, file, instance), 0, "selector 39");
    const std::u16string path = Wide(file);
    GuardedRecord access;
    access.Put(12, path.c_str());
    GuardedRecord info;
    info.Put(198, instance);
    ExpectEqual(plugin.Request(37, ForeignStdParms(), access.Data(), info.Data()), 0, "selector 37");
    ExpectEqual(info.Get<std::int32_t>(2), 32, "the file's width");
    ExpectEqual(info.Get<std::uint8_t>(18), 2, "the low byte of field type 258"); // 258 = 0x102
    Expect(info.Get<ksInstance>(198) == instance, "the slot changed");
}

void MissingFileReplacesSettingsByText(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    const std::u16string path = u"/nowhere/clip.tessel";
    const std::string text = DocumentWith("mFrameWidth", "99");
    GuardedRecord access;
    access.Put(12, path.c_str());
    GuardedRecord info;
    info.Put(198, instance);
    info.Put(206, text.c_str());
    ExpectEqual(plugin.Request(37, ForeignStdParms(), access.Data(), info.Data()), 0, "selector 37");
    ExpectEqual(info.Get<std::int32_t>(2), 99, "the text's width");
}

void WithoutLegacySuiteFails(Plugin& plugin)
{
    const std::string text = Document();
    Foreign().refusedSuites = {"Kestrel Legacy Suite"};
    GuardedRecord info;
    ExpectEqual(Describe(plugin, text, info), 5, "selector 37 without the legacy suite");
    info.ExpectChangedOnly({{0, 2}, {198, 8}}, "selector 37 without the legacy suite");
    Foreign().refusedSuites.clear();
    GuardedRecord again;
    ExpectEqual(Describe(plugin, text, again), 0, "selector 37 with the legacy suite");
}

void NullParametersFail(Plugin& plugin)
{
    const std::u16string path = u"/nowhere/clip.tessel";
    const std::string text = Document();
    GuardedRecord access;
    access.Put(12, path.c_str());
    GuardedRecord info;
    info.Put<ksInstance>(198, nullptr);
    info.Put(206, text.c_str());
    ExpectEqual(plugin.Request(37, nullptr, access.Data(), info.Data()), 5, "selector 37 without parameters");
    info.ExpectChangedOnly({{0, 2}, {198, 8}}, "selector 37 without parameters");
}

void ExtremeRates(Plugin& plugin)
{
    Foreign().legacyTimeScale = 0;
    Foreign().legacySampleSize = 1000;
    struct Case {
        const char* ticksPerFrame;
        const char* duration;
        int frames; ///< rounded toward minus infinity; none where a rate is 0 or less
    };
    const char* const largest = "9223372036854775807";   // 2^63 - 1, also what a stored rate of 0 becomes
    const char* const smallest = "-9223372036854775808"; // -2^63
    for (const Case& each : {Case{"0", "0", 0},
                             {"0", "-1", -1},
                             {"0", largest, 1},
                             {"0", smallest, -2},
                             {largest, "0", 0},
                             {largest, "-1", -1},
                             {largest, largest, 1},
                             {largest, smallest, -2},
                             {"-1", "0", 0},
                             {"-1", largest, 0},
                             {smallest, largest, 0},
                             {smallest, smallest, 0},
                             {"1", "2147483", 2147483},
                             {"1", "-3", -3}}) {
        std::string text = DocumentWith("mVideoDuration", std::string("{\"ticks\": ") + each.duration + "}");
        text.replace(text.find("10160640000"), 11, each.ticksPerFrame);
        const std::string what = std::string("duration ") + each.duration + " at rate " + each.ticksPerFrame;
        GuardedRecord info;
        ExpectEqual(Describe(plugin, text, info), 0, what);
        ExpectEqual(info.Get<std::int32_t>(170), each.frames * 1000, what + ", byte 170");
    }
    for (const char* duration : {largest, smallest}) { // more frames than 32 bits hold
        std::string text = DocumentWith("mVideoDuration", std::string("{\"ticks\": ") + duration + "}");
        text.replace(text.find("10160640000"), 11, 1, '1');
        GuardedRecord info;
        ExpectEqual(Describe(plugin, text, info), 0,
                    std::string("one tick a frame, duration ").append(duration));
    }
}

} // namespace

std::vector<Check> TesselDescriptionChecks()
{
    return {
        {"tessel.describe.text", "A clip without a file is described from its settings text, field by field",
         DescribesText},
        {"tessel.describe.3003", "Three frames at a sample size of 1001 report a duration of 3003",
         ThreeFramesAt1001},
        {"tessel.describe.nothing",
         "Without a file and a text the answer is 2, and only bytes 0 and 1 are written", NoFileNoText},
        {"tessel.describe.existing-unopened",
         "With an empty slot an existing file is not read, and the defaults are reported",
         ExistingPathIsNotRead},
        {"tessel.describe.opened", "An opened file is described from its own settings", OpenedFileIsDescribed},
        {"tessel.describe.missing-file",
         "Where the file is missing, the settings text replaces the instance's settings",
         MissingFileReplacesSettingsByText},
        {"tessel.describe.no-suite",
         "Without the legacy suite the answer is 5, and with it the next request succeeds",
         WithoutLegacySuiteFails},
        {"tessel.describe.no-parameters", "Without standard parameters the answer is 5", NullParametersFail},
        {"tessel.describe.extreme-rates",
         "Any frame rate and duration is answered, and frame counts are rounded down", ExtremeRates},
    };
}

} // namespace conformance
