/// How documents are read, seen through the text that selector 38 gives back.

#include "Documents.h"
#include "TesselChecks.h"

#include <string>

namespace conformance {

namespace {

void ExpectMember(const std::string& text, const std::string& member)
{
    Expect(text.find(member) != std::string::npos, "the settings lack " + member + ": " + text);
}

std::string DefaultText(const Plugin& plugin)
{
    return SettingsText(plugin, "[]");
}

void EmptyObjectIsDefault(Plugin& plugin)
{
    for (const std::string document : {"{}", "[]", "7", "\"text\"", "null", ""}) {
        const std::string text = SettingsText(plugin, document);
        ExpectMember(text, "\"mVersion\":1");
        ExpectMember(text, "\"mFrameWidth\":720");
        ExpectMember(text, "\"mVideoDuration\":{\"ticks\":15240960000000}");
    }
}

void EveryRequiredKeyIsRequired(Plugin& plugin)
{
    const std::string defaults = DefaultText(plugin);
    for (const char* key :
         {"mPixelFormat", "mFrameWidth", "mFrameHeight", "mFramePAR", "mFieldType", "mRenderFormat",
          "mUpperFieldColor", "mLowerFieldColor", "mTopGradiantColorStart", "mTopGradiantColorEnd",
          "mBottomGradiantColorStart", "mBottomGradiantColorEnd", "mVideoDuration", "mVideoFrameRate"}) {
        Expect(SettingsText(plugin, DocumentWith(key, "")) == defaults,
               std::string("a document without ") + key);
        Expect(SettingsText(plugin, DocumentWith(key, "\"text\"")) == defaults,
               std::string("a text for ") + key);
        Expect(SettingsText(plugin, DocumentWith(key, "[]")) == defaults, std::string("an array for ") + key);
    }
}

void IntegersAreIntegers(Plugin& plugin)
{
    const std::string defaults = DefaultText(plugin);
    for (const char* value : {"333.0", "3e2", "\"333\"", "true", "null"}) {
        Expect(SettingsText(plugin, DocumentWith("mFrameWidth", value)) == defaults,
               std::string("a width of ") + value);
    }
    // Truncated to 32 bits: 2^32 + 5, and the largest unsigned 64-bit number as -1, which is written
    // sign-extended.
    ExpectMember(SettingsText(plugin, DocumentWith("mFrameWidth", "4294967301")), "\"mFrameWidth\":5,");
    ExpectMember(SettingsText(plugin, DocumentWith("mFrameWidth", "18446744073709551615")),
                 "\"mFrameWidth\":18446744073709551615");
    ExpectMember(SettingsText(plugin, DocumentWith("mFrameWidth", "-1")),
                 "\"mFrameWidth\":18446744073709551615");
}

void VersionDefaultsToZero(Plugin& plugin)
{
    ExpectMember(SettingsText(plugin, Document()), "\"mVersion\":0");
    ExpectMember(SettingsText(plugin, Document("\"mVersion\": 3,")), "\"mVersion\":3");
}

void ZeroRateIsUnusable(Plugin& plugin)
{
    ExpectMember(SettingsText(plugin, DocumentWith("mVideoFrameRate", R"({"ticksperframe": 0})")),
                 "\"ticksperframe\":9223372036854775807");
    ExpectMember(SettingsText(plugin, DocumentWith("mVideoFrameRate", R"({"ticksperframe": -5})")),
                 "\"ticksperframe\":-5");
}

void Wrapped(Plugin& plugin)
{
    const std::string plain = SettingsText(plugin, Document());
    Expect(SettingsText(plugin, "{\"SerializerWrappedObject\": " + Document() + "}") == plain,
           "a wrapped document reads differently");
    Expect(SettingsText(plugin, "{\"SerializerWrappedObject\": []}") == DefaultText(plugin),
           "a wrapped array is not the default clip");
}

void TextEndsAtNul(Plugin& plugin)
{
    Expect(SettingsText(plugin, Document() + std::string("\0}garbage", 9)) == SettingsText(plugin, Document()),
           "bytes after a NUL change the document");
}

void TextAfterDocumentIsMalformed(Plugin& plugin)
{
    Expect(SettingsText(plugin, Document() + "}") == DefaultText(plugin), "a brace after the document");
    Expect(SettingsText(plugin, Document() + " \n\t") == SettingsText(plugin, Document()), "space after it");
}

void Booleans(Plugin& plugin)
{
    const std::string defaults = DefaultText(plugin);
    for (const char* value : {"false", "0", "\"false\""}) {
        ExpectMember(SettingsText(plugin, Document(std::string("\"mDrawFrameFieldNumber\": ") + value + ",")),
                     "\"mDrawFrameFieldNumber\":false");
    }
    for (const char* value : {"true", "1", "-1", "\"true\""}) {
        ExpectMember(SettingsText(plugin, Document(std::string("\"mDrawFrameFieldNumber\": ") + value + ",")),
                     "\"mDrawFrameFieldNumber\":true");
    }
    for (const char* value : {"\"no\"", "\"True\"", "1.0", "null", "[]"}) {
        Expect(SettingsText(plugin, Document(std::string("\"mDrawFrameFieldNumber\": ") + value + ",")) ==
                   defaults,
               std::string("a boolean from ") + value);
    }
}

void LegacyColorSpace(Plugin& plugin)
{
    const std::string plain = SettingsText(plugin, Document());
    const std::string legacy = R"("mPredefinedColorSpace": "BT601_PAL",)";
    const std::string named = SettingsText(plugin, Document(legacy));
    ExpectMember(named, "Rec. 601 (PAL)");
    ExpectMember(named, "\"mVersion\":0");
    Expect(SettingsText(plugin, "{\"SerializerWrappedObject\": " + Document(legacy) + "}") == named,
           "the legacy key inside a wrapper is not found");
    const std::string versioned = SettingsText(plugin, Document("\"mVersion\": 1," + legacy));
    Expect(versioned.find("PAL") == std::string::npos, "a versioned document heeds the legacy key");
    Expect(SettingsText(plugin, Document(R"("mPredefinedColorSpace": "",)")) == plain,
           "an empty name has an effect");
    Expect(SettingsText(plugin, Document(R"("mPredefinedColorSpace": 7,)")) == plain,
           "a legacy key of the wrong type loses what was read before it");
}

void ColorSpaceObject(Plugin& plugin)
{
    Expect(SettingsText(plugin, Document(R"("mColorSpace": {},)")) != SettingsText(plugin, Document()),
           "an empty colour space is Rec. 709");
    Expect(SettingsText(plugin, Document(R"("mColorSpace": {"baseProfileType": "x"},)")) == DefaultText(plugin),
           "a wrong type inside the colour space is accepted");
}

void Swatches(Plugin& plugin)
{
    const std::string band = R"({"xCoordinates": [1, -2], "yCoordinates": []})";
    const std::string all = R"({"colorSwatches": )" + band + R"(, "legalRangeGradient": )" + band +
                            R"(, "fullRangeGradient": )" + band + "}";
    ExpectMember(SettingsText(plugin, Document("\"mSwatchCoordinates\": " + all + ",")),
                 "\"xCoordinates\":[1,");
    ExpectMember(
        SettingsText(plugin, Document(R"("mSwatchColors": {"colorSwatches": [1], "legalRangeGradient": [],
                                               "fullRangeGradient": [0.5]},)")),
        "\"colorSwatches\":[1.0]");
    std::string broken = all;
    broken.replace(broken.find("[1,"), 3, "[1.5,");
    Expect(SettingsText(plugin, Document("\"mSwatchCoordinates\": " + broken + ",")) == DefaultText(plugin),
           "a coordinate of 1.5 is accepted");
}

void HostileTexts(Plugin& plugin)
{
    const std::string defaults = DefaultText(plugin);
    constexpr std::size_t kDeep = 200'000;
    Expect(SettingsText(plugin, std::string(kDeep, '[')) == defaults, "open brackets");
    Expect(SettingsText(plugin, std::string(kDeep, '[') + std::string(kDeep, ']')) == defaults,
           "nested arrays");
    std::string nested;
    for (std::size_t level = 0; level < kDeep; ++level) {
        nested += "{\"a\":";
    }
    Expect(SettingsText(plugin, nested) == defaults, "nested objects");
    Expect(SettingsText(plugin, std::string(1'000'000, ' ') + Document()) == SettingsText(plugin, Document()),
           "a million spaces");
    Expect(SettingsText(plugin, Document("\"x\": \"\xFF\",")) == defaults, "invalid UTF-8");
    ExpectMember(SettingsText(plugin, Document(R"("mSwatchColorsFilePath": "a\ud800b",)")), "a\xEF\xBF\xBD"
                                                                                            "b");
    ExpectMember(SettingsText(plugin, Document(R"("mVersion": 1, "mVersion": 2,)")), "\"mVersion\":2");
}

} // namespace

std::vector<Check> TesselDocumentChecks()
{
    return {
        {"tessel.document.default", "Anything but a complete object gives the default clip, version 1",
         EmptyObjectIsDefault},
        {"tessel.document.required",
         "A document that lacks a required key, or has it with another type, gives the default clip",
         EveryRequiredKeyIsRequired},
        {"tessel.document.integers",
         "Integers have no fraction, are truncated to 32 bits and written sign-extended", IntegersAreIntegers},
        {"tessel.document.version", "A document without a version has version 0", VersionDefaultsToZero},
        {"tessel.document.zero-rate", "A stored frame rate of 0 becomes 2^63 - 1; any other is kept",
         ZeroRateIsUnusable},
        {"tessel.document.wrapped", "A wrapped document reads like the unwrapped one", Wrapped},
        {"tessel.document.nul", "A NUL ends the document", TextEndsAtNul},
        {"tessel.document.trailing", "Text after the document is an error; white space is not",
         TextAfterDocumentIsMalformed},
        {"tessel.document.booleans", "Booleans are read from booleans, integers and the texts true and false",
         Booleans},
        {"tessel.document.legacy-color", "The legacy colour-space key counts in documents of version 0 only",
         LegacyColorSpace},
        {"tessel.document.color-space",
         "An empty colour-space object is not Rec. 709; a wrong type gives the default clip", ColorSpaceObject},
        {"tessel.document.swatches",
         "Swatch lists are read from the document: whole positions, colours of any number", Swatches},
        {"tessel.document.hostile",
         "Deep nesting, long white space, invalid UTF-8 and duplicate keys are answered", HostileTexts},
    };
}

} // namespace conformance
