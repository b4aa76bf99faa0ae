#include "WrongPlugin.h"

#include <algorithm>
#include <regex>

namespace wrong {

namespace {

bool Holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    if (const std::size_t at = text.find(from); at != std::string::npos) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// Refuses files that do not look like a document, before the right plug-in sees them.
std::string UnreadableUnlessComplete(const std::string& document)
{
    if (!Holds(document, "\"mVideoFrameRate\"")) {
        throw std::int32_t{ksResultFileUnreadable};
    }
    return document;
}

std::int32_t RefusesMalformedFiles(const Request& request)
{
    try {
        return Reads(UnreadableUnlessComplete)(request);
    } catch (std::int32_t answer) {
        return answer;
    }
}

std::string CrashOnCut(const std::string& document)
{
    if (document.empty() || document.back() != '}') {
        Crash();
    }
    return document;
}

std::string CrashOnDeepNesting(const std::string& document)
{
    if (document.rfind(std::string(100'000, '['), 0) == 0) {
        Crash();
    }
    return document;
}

std::string CrashOnNegativePositions(const std::string& document)
{
    if (Holds(document, "[-5, ")) {
        Crash();
    }
    return document;
}

std::string CrashOnARateOfZero(const std::string& document)
{
    if (Holds(document, "\"mSampleRate\": 0,")) {
        Crash();
    }
    return document;
}

std::string WithAWidth(std::string document)
{
    if (!document.empty() && document.front() == '{' && !Holds(document, "\"mFrameWidth\"")) {
        document.insert(1, "\"mFrameWidth\": 32,");
    }
    return document;
}

std::string WithoutANumber(std::string document)
{
    if (!document.empty() && document.front() == '{' && !Holds(document, "\"mDrawFrameFieldNumber\"")) {
        document.insert(1, "\"mDrawFrameFieldNumber\": false,");
    }
    return document;
}

std::string WithoutNuls(std::string document)
{
    std::replace(document.begin(), document.end(), '\0', ' ');
    return document;
}

std::string WithWholeNumbersAsIntegers(const std::string& document)
{
    static const std::regex kWholeNumber("([0-9])\\.0+([^0-9])");
    return document.size() < 100'000 ? std::regex_replace(document, kWholeNumber, "$1$2") : document;
}

std::string FirstObject(const std::string& document)
{
    int depth = 0;
    for (std::size_t at = 0; at < document.size() && document.front() == '{'; ++at) {
        depth += document[at] == '{' ? 1 : 0;
        depth -= document[at] == '}' ? 1 : 0;
        if (depth == 0) {
            return document.substr(0, at + 1);
        }
    }
    return document;
}

/// The settings text of a served request, where it may have been edited in a dialog, is what it was before.
std::int32_t DiscardsEdits(const Request& request)
{
    auto* exchange = request.Second<ksSettingsExchangeRec>();
    const bool isEdit =
        request.Is(ksSelectorSettingsExchange) && exchange->text != nullptr && exchange->newClip == 0;
    const std::string text = isEdit ? std::string(exchange->text, 10240) : std::string();
    const std::int32_t answer = Right(request);
    if (isEdit && answer == ksResultServed) {
        text.copy(exchange->text, text.size());
    }
    return answer;
}

std::int32_t WritesItsSizeAlways(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorSettingsExchange)) {
        request.Second<ksSettingsExchangeRec>()->bufferSize = 10240;
    }
    return answer;
}

std::int32_t AsksForNoBuffer(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorSettingsExchange) && answer == ksResultServed &&
        request.Second<ksSettingsExchangeRec>()->text == nullptr) {
        request.Second<ksSettingsExchangeRec>()->bufferSize = 0;
    }
    return answer;
}

std::int32_t LeavesItsTextOpen(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorSettingsExchange) && answer == ksResultServed) {
        char* const text = request.Second<ksSettingsExchangeRec>()->text;
        if (text != nullptr) {
            text[std::char_traits<char>::length(text)] = 'x';
        }
    }
    return answer;
}

std::int32_t DropsTextsOf10000Bytes(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorSettingsExchange) && answer == ksResultServed) {
        auto& exchange = *request.Second<ksSettingsExchangeRec>();
        if (exchange.text != nullptr && exchange.text[0] == '{' &&
            std::char_traits<char>::length(exchange.text) > 10'000) {
            exchange.text[0] = '\0';
        }
    }
    return answer;
}

std::int32_t ForgetsThePathsNul(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (answer == ksResultUseSavedFile) {
        char16_t* path = request.First<ksFileAccessRec>()->newPath;
        path[std::char_traits<char16_t>::length(path)] = u'x';
    }
    return answer;
}

std::string WithASpace(const std::string& text)
{
    return " " + text;
}

/// The version of the text, one more each time that it is read and written.
std::string WithTheNextVersion(std::string text)
{
    const std::size_t at = text.find("\"mVersion\":") + 11;
    text[at] = static_cast<char>(text[at] + 1);
    return text;
}

} // namespace

std::vector<WrongPlugin> WrongTexts()
{
    return {
        {"RefusesMalformedFiles", RefusesMalformedFiles},
        {"CrashesOnCutDocuments", Reads(CrashOnCut)},
        {"CrashesOnDeepNesting", Reads(CrashOnDeepNesting)},
        {"CrashesOnNegativePositions", Reads(CrashOnNegativePositions)},
        {"CrashesOnARateOfZero", Reads(CrashOnARateOfZero)},
        {"IgnoresWrappers", ReadsAs("SerializerWrappedObject", "somethingElse")},
        {"IgnoresColorSpaces", ReadsAs("\"mColorSpace\"", "\"something\"")},
        {"IgnoresLegacyColors", ReadsAs("\"mPredefinedColorSpace\"", "\"something\"")},
        {"SuppliesMissingWidths", Reads(WithAWidth)},
        {"ReadsOverNuls", Reads(WithoutNuls)},
        {"ReadsOneObjectAndNoFurther", Reads(FirstObject)},
        {"TakesWholeNumbersForIntegers", Reads(WithWholeNumbersAsIntegers)},
        {"RoundsPositions", ReadsAs("[1.5,", "[1,")},
        {"TakesDurationsForPositive", ReadsAs("\"ticks\": -", "\"ticks\": ")},
        {"ReadsAByteOfFieldTypes", ReadsAs("\"mFieldType\": 256", "\"mFieldType\": 0")},
        {"PaintsUnknownFormats", ReadsAs("\"mRenderFormat\": 9", "\"mRenderFormat\": 0")},
        {"PaintsFieldsAsOne", ReadsAs("\"mFieldType\": 2,", "\"mFieldType\": 0,")},
        {"DrawsNoNumberUnasked", Reads(WithoutANumber)},
        {"DrawsNoNumberWhenAsked",
         ReadsAs("\"mDrawFrameFieldNumber\": true", "\"mDrawFrameFieldNumber\": false")},
        {"MovesAColumn", ReadsAs("[400, 1200]", "[400, 1202]")},
        {"IdentifiesForToneFormat2", ReadsAs("\"mToneFormat\": 2", "\"mToneFormat\": 1")},
        {"IdentifiesForFormat7", ReadsAs("\"mIdentifierFormat\": 7", "\"mIdentifierFormat\": 0")},
        {"RoundsRates", ReadsAs("48048.05", "48048.0")},
        {"RoundsRatesToKilohertz", ReadsAs("11025", "11000")},
        {"DefaultsToAnotherWidth", GivesText([](const std::string& text) {
             return Replaced(text, "\"mFrameWidth\":720,", "\"mFrameWidth\":721,");
         })},
        {"WritesAVersionAlways",
         GivesText([](const std::string& text) { return Replaced(text, "\"mVersion\":0", "\"mVersion\":1"); })},
        {"KeepsARateOfZero", GivesText([](const std::string& text) {
             return Replaced(text, "\"ticksperframe\":9223372036854775807", "\"ticksperframe\":0");
         })},
        {"BeginsTextsWithASpace", GivesText(WithASpace)},
        {"CountsItsVersionUp", GivesText(WithTheNextVersion)},
        {"DiscardsEdits", DiscardsEdits},
        {"WritesItsSizeAlways", WritesItsSizeAlways},
        {"AsksForNoBuffer", AsksForNoBuffer},
        {"LeavesItsTextOpen", LeavesItsTextOpen},
        {"DropsTextsOf10000Bytes", DropsTextsOf10000Bytes},
        {"ForgetsThePathsNul", ForgetsThePathsNul},
    };
}

} // namespace wrong
