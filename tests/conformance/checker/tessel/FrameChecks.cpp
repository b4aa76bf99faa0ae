/// Selector 47: what is asked of the host, and what the pixels are.

#include "Documents.h"
#include "TesselChecks.h"

#include <array>
#include <cstring>
#include <string>

namespace conformance {

namespace {

using Pixel = std::array<std::uint8_t, 4>; // blue, green, red, alpha

// The document's two field colours: red 1, green 0.5, blue 0.25 (×255, to nearest: 255, 128, 64), and green.
constexpr Pixel kUpper = {64, 128, 255, 255};
constexpr Pixel kLower = {0, 255, 0, 255};
constexpr Pixel kUnpainted = {0x77, 0x77, 0x77, 0x77};
constexpr std::int64_t kTicksPerFrame = 10160640000; // 25 frames a second

const std::string kNoNumber = "\"mDrawFrameFieldNumber\": false,";

Pixel PixelAt(const ForeignFrame& frame, int x, int row)
{
    Pixel pixel;
    std::memcpy(pixel.data(), frame.Row(row) + x * 4, 4);
    return pixel;
}

void ExpectRow(const ForeignFrame& frame, int row, const Pixel& expected)
{
    for (int x = 0; x < static_cast<int>(frame.usedBytes / 4); ++x) {
        Expect(PixelAt(frame, x, row) == expected,
               "pixel " + std::to_string(x) + " of row " + std::to_string(row) + " is wrong");
    }
}

const ForeignFrame& Render(const Plugin& plugin, const std::string& document, std::int64_t ticks = 0)
{
    const ksInstance instance = OpenDocument(plugin, document);
    void* frame = nullptr;
    ExpectEqual(RequestFrame(plugin, instance, ticks, frame), 0, "selector 47");
    Expect(frame == Foreign().frames.back().get(), "the stored handle is not the created frame");
    Expect(Foreign().frames.back()->GuardsIntact(), "bytes outside the picture were written");
    return *Foreign().frames.back();
}

std::string Interlaced(int height)
{
    std::string document = Document(kNoNumber);
    document.replace(document.find("\"mFieldType\": 0"), 15, "\"mFieldType\": 2");
    document.replace(document.find("\"mFrameHeight\": 18"), 18, "\"mFrameHeight\": " + std::to_string(height));
    return document;
}

void CreationArguments(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    void* frame = nullptr;
    GuardedRecord request;
    request.Put(0, instance);
    request.Put<std::int64_t>(12, 0);
    request.Put(36, &frame);
    ExpectEqual(plugin.Request(47, ForeignStdParms(), nullptr, request.Data()), 0, "selector 47");
    ExpectEqual(static_cast<long long>(Foreign().creations.size()), 1, "frames created");
    const CreateCall& call = Foreign().creations.front();
    ExpectEqual(call.access, 2, "access");
    ExpectEqual(call.pixelFormat, 0x61726762, "pixel format");
    ExpectEqual(call.width, 32, "width");
    ExpectEqual(call.height, 18, "height");
    Expect(!call.reserved5, "the boolean is not false");
    ExpectEqual(call.reserved6, 0, "the seventh argument");
    ExpectEqual(call.parNumerator, 10, "pixel aspect numerator");
    ExpectEqual(call.parDenominator, 11, "pixel aspect denominator");
    Expect(call.extra16 == static_cast<std::uint8_t*>(request.Data()) + 96,
           "the 16-byte value is not handed through by address");
    const std::vector<std::string> suites = {"Kestrel Vimo Creator 2 Suite/4", "Kestrel Vimo Suite/1",
                                             "Kestrel Pixel Format Suite/1"};
    Expect(Foreign().acquired == suites, "other suites were acquired, or in another order");
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "a second frame");
    Expect(Foreign().acquired == suites, "the suites were acquired again");
}

void ProgressiveIsOneColor(Plugin& plugin)
{
    const ForeignFrame& frame = Render(plugin, Document(kNoNumber));
    for (int row = 0; row < 18; ++row) {
        ExpectRow(frame, row, kUpper);
    }
}

void FieldsInterleave(Plugin& plugin)
{
    const ForeignFrame& frame = Render(plugin, Interlaced(18));
    for (int row = 0; row < 18; ++row) {
        ExpectRow(frame, row, row % 2 == 0 ? kUpper : kLower);
    }
}

void OddHeightLeavesLastRow(Plugin& plugin)
{
    for (const bool upwards : {false, true}) {
        Foreign().upwards = upwards;
        Foreign().rowPadding = 52;
        const ForeignFrame& frame = Render(plugin, Interlaced(19));
        for (int row = 0; row < 18; ++row) {
            ExpectRow(frame, row, row % 2 == 0 ? kUpper : kLower);
        }
        ExpectRow(frame, 18, kUnpainted);
    }
}

void GradientStartsAtTheStartColor(Plugin& plugin)
{
    std::string document = Document(kNoNumber);
    document.replace(document.find("\"mRenderFormat\": 0"), 18, "\"mRenderFormat\": 1");
    const std::string white = R"({"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 1, "mBluePart": 1})";
    const std::string black = R"({"mAlphaPart": 1, "mRedPart": 0, "mGreenPart": 0, "mBluePart": 0})";
    const std::string color = R"({"mAlphaPart": 1.0, "mRedPart": 1.0, "mGreenPart": 0.5, "mBluePart": 0.25})";
    for (const auto& [key, value] : {std::pair{"\"mTopGradiantColorStart\": ", black},
                                     {"\"mTopGradiantColorEnd\": ", black},
                                     {"\"mBottomGradiantColorStart\": ", white},
                                     {"\"mBottomGradiantColorEnd\": ", white}}) {
        const std::size_t at = document.find(key) + std::strlen(key);
        document.replace(at, color.size(), value);
    }
    const ForeignFrame& frame = Render(plugin, document);
    for (int row = 0; row < 18; ++row) {
        // Row i of 18 has i/18 of the way from black to white; the last one stays short of white.
        // The way is a 32-bit float, so 15/18 falls just below the tie of 212.5.
        const double way = static_cast<float>(row) / 18.0F;
        const auto level = static_cast<std::uint8_t>(255.0 * way + 0.5);
        ExpectRow(frame, row, {level, level, level, 255});
    }
}

void GradientMovesWithTime(Plugin& plugin)
{
    std::string document = Document(kNoNumber);
    document.replace(document.find("\"mRenderFormat\": 0"), 18, "\"mRenderFormat\": 1");
    const std::size_t at = document.find("\"mTopGradiantColorEnd\": ") + 24;
    document.replace(at, document.find('}', at) - at + 1,
                     R"({"mAlphaPart": 1, "mRedPart": 0, "mGreenPart": 0, "mBluePart": 0})");
    // 25 frames in the clip: at frame 5 the top row has 1/5 of the way from red 1 to red 0 behind it.
    for (const std::int64_t within : {std::int64_t{0}, kTicksPerFrame - 1}) {
        const ForeignFrame& frame = Render(plugin, document, 5 * kTicksPerFrame + within);
        ExpectRow(frame, 0, {51, 102, 204, 255}); // ×0.8: 0.2, 0.4, 0.8 of 255
    }
}

/// A clip of `ticks` that fades from `start` (a document's colour) to black in its top row.
std::string Fading(const std::string& start, const std::string& ticks)
{
    std::string document = Document(kNoNumber);
    const auto replaceValue = [&document](const std::string& key, const std::string& value) {
        const std::size_t at = document.find("\"" + key + "\": ") + key.size() + 4;
        document.replace(at, document.find_first_of(",}", at) - at, value);
    };
    const auto replaceColor = [&document](const std::string& key, const std::string& value) {
        const std::size_t at = document.find("\"" + key + "\": ") + key.size() + 4;
        document.replace(at, document.find('}', at) - at + 1, value);
    };
    replaceValue("mRenderFormat", "1");
    replaceValue("ticks", ticks);
    replaceColor("mTopGradiantColorStart", start);
    replaceColor("mTopGradiantColorEnd",
                 R"({"mAlphaPart": 1, "mRedPart": 0, "mGreenPart": 0, "mBluePart": 0})");
    return document;
}

void GradientOfNegativeDuration(Plugin& plugin)
{
    const std::string start = R"({"mAlphaPart": 1, "mRedPart": 0.5, "mGreenPart": 0, "mBluePart": 0.5})";
    // -1 s is -25 frames: frame 5 lies -1/5 of the way to black, at 0.5 + 0.5 / 5 = 0.6, ×255 = 153.
    ExpectRow(Render(plugin, Fading(start, "-254016000000"), 5 * kTicksPerFrame), 0, {153, 0, 153, 255});
    // The frame before the start counts as 2^32 - 1, far behind the end: 0.5 less a huge number is black.
    ExpectRow(Render(plugin, Fading(start, "254016000000"), -kTicksPerFrame), 0, {0, 0, 0, 255});
}

void FieldTypesFrom256On(Plugin& plugin)
{
    for (const auto& [stored, reported] : {std::pair{"256", 0}, {"257", 1}, {"65538", 2}, {"-1", 255}}) {
        std::string document = Document(kNoNumber);
        document.replace(document.find("\"mFieldType\": 0"), 15, std::string("\"mFieldType\": ") + stored);
        const ForeignFrame& frame = Render(plugin, document);
        ExpectRow(frame, 0, kUpper);
        ExpectRow(frame, 1, kLower);
        GuardedRecord info;
        ExpectEqual(Describe(plugin, document, info), 0, "selector 37");
        ExpectEqual(info.Get<std::uint8_t>(18), reported, std::string("byte 18 for field type ") + stored);
    }
}

void ZeroFramesStillAnswer(Plugin& plugin)
{
    std::string document = Document(kNoNumber);
    document.replace(document.find("\"mRenderFormat\": 0"), 18, "\"mRenderFormat\": 1");
    document.replace(document.find("\"ticks\": 254016000000"), 21, "\"ticks\": 0");
    Render(plugin, document, 0);
    Render(plugin, document, 7 * kTicksPerFrame);
}

void UnknownRenderFormatPaintsNothing(Plugin& plugin)
{
    std::string document = Document(kNoNumber);
    document.replace(document.find("\"mRenderFormat\": 0"), 18, "\"mRenderFormat\": 9");
    const ForeignFrame& frame = Render(plugin, document);
    for (int row = 0; row < 18; ++row) {
        ExpectRow(frame, row, kUnpainted);
    }
}

void NumberIsDrawn(Plugin& plugin)
{
    std::string document = Document();
    document.replace(document.find("\"mFrameWidth\": 32"), 17, "\"mFrameWidth\": 320");
    document.replace(document.find("\"mFrameHeight\": 18"), 18, "\"mFrameHeight\": 240");
    document.replace(document.find("\"mRenderFormat\": 0"), 18, "\"mRenderFormat\": 9");
    const ForeignFrame zero = Render(plugin, document);
    const ForeignFrame zeroAgain = Render(plugin, document);
    const ForeignFrame one = Render(plugin, document, kTicksPerFrame);
    Expect(zero.memory == zeroAgain.memory, "two requests for the same frame differ");
    Expect(zero.memory != one.memory, "frames 0 and 1 look the same");
    // The plate begins at 5 % of width and height: nothing before it is touched.
    for (int row = 0; row < 12; ++row) {
        ExpectRow(zero, row, kUnpainted);
    }
    Expect(PixelAt(zero, 15, 100) == kUnpainted, "the plate begins left of 5 % of the width");
}

void FailingFrameSuite(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    for (std::int32_t ForeignHostState::*status :
         {&ForeignHostState::pixelsStatus, &ForeignHostState::boundsStatus,
          &ForeignHostState::rowBytesStatus}) {
        Foreign().*status = -7;
        void* frame = nullptr;
        ExpectEqual(RequestFrame(plugin, instance, 0, frame), 5, "a failing frame suite");
        Foreign().*status = 0;
        Expect(frame == Foreign().frames.back().get(), "the created frame is not where it was stored");
        for (int row = 0; row < 18; ++row) {
            ExpectRow(*Foreign().frames.back(), row, kUnpainted);
        }
    }
}

void RefusedCreation(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    Foreign().createNothing = true;
    void* frame = nullptr;
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 5, "a creation that gives no frame");
    Foreign().createNothing = false;
    Foreign().createStatus = -3; // not tested: the frame is there
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "a creation that complains but gives a frame");
}

void WithoutFrameSuites(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    void* frame = nullptr;
    for (const char* refused :
         {"Kestrel Vimo Creator 2 Suite", "Kestrel Vimo Suite", "Kestrel Pixel Format Suite"}) {
        Foreign().refusedSuites = {refused};
        ExpectEqual(RequestFrame(plugin, instance, 0, frame), 5, std::string("without ") + refused);
    }
    Foreign().refusedSuites.clear();
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "once all suites are there");
}

void HandlesStayWithTheFirstHost(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    void* frame = nullptr;
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "the first host");
    GuardedRecord request;
    request.Put(0, instance);
    request.Put<std::int64_t>(12, 0);
    request.Put(36, &frame);
    ExpectEqual(plugin.Request(47, RefusingStdParms(), nullptr, request.Data()), 0,
                "a second host, whose suites nobody asks for");
}

void CompressedFormatsBecomePaintable(Plugin& plugin)
{
    struct Case {
        const char* code;
        std::uint32_t asked;
    };
    const std::uint32_t bgra = 0x61726762;
    const std::uint32_t vuya709 = 0x41595556; // "VUYA"
    for (const Case& testCase : {Case{"yv12", vuya709},
                                 {"yvi2", vuya709},
                                 {"yv17", vuya709},
                                 {"yvi7", vuya709},
                                 {"dvn2", bgra},
                                 {"dvp2", bgra},
                                 {"dvn5", bgra},
                                 {"dvp5", bgra},
                                 {"dvn7", vuya709},
                                 {"dvp7", vuya709},
                                 {"dvn1", vuya709},
                                 {"dvp1", vuya709}}) {
        std::uint32_t code = 0;
        std::memcpy(&code, testCase.code, 4);
        std::string document = Document();
        document.replace(document.find("1634887522"), 10, std::to_string(code));
        Render(plugin, document);
        ExpectEqual(Foreign().creations.back().pixelFormat, testCase.asked,
                    std::string("for ") + testCase.code);
    }
}

} // namespace

std::vector<Check> TesselFrameChecks()
{
    return {
        {"tessel.frame.creation",
         "A frame is created with the stated arguments, and the suites are acquired once", CreationArguments},
        {"tessel.frame.progressive", "A progressive frame has the upper field colour everywhere",
         ProgressiveIsOneColor},
        {"tessel.frame.fields", "Interlaced rows have the upper and the lower field colour in turn",
         FieldsInterleave},
        {"tessel.frame.odd-height",
         "An interlaced frame of odd height leaves its last row unpainted, for any row step",
         OddHeightLeavesLastRow},
        {"tessel.frame.gradient-rows",
         "The gradient begins at the top colour and ends one row short of the bottom colour",
         GradientStartsAtTheStartColor},
        {"tessel.frame.gradient-time", "The gradient changes with the frame number and not within a frame",
         GradientMovesWithTime},
        {"tessel.frame.gradient-signs",
         "Negative durations count as signed, frame numbers before the start as unsigned",
         GradientOfNegativeDuration},
        {"tessel.frame.field-type", "Every field type but 0 draws two fields, and its low byte is reported",
         FieldTypesFrom256On},
        {"tessel.frame.no-frames", "A clip of no frames still gives frames", ZeroFramesStillAnswer},
        {"tessel.frame.unknown-render", "An unknown render format paints nothing",
         UnknownRenderFormatPaintsNothing},
        {"tessel.frame.number", "The number changes with the frame and stays inside its plate", NumberIsDrawn},
        {"tessel.frame.failing-suite",
         "A failing frame query answers 5 and leaves the created frame stored and unpainted",
         FailingFrameSuite},
        {"tessel.frame.refused", "Frame creation fails where no frame is stored, whatever its status",
         RefusedCreation},
        {"tessel.frame.no-suites", "All three frame suites are needed, and are asked for again after a failure",
         WithoutFrameSuites},
        {"tessel.frame.first-host", "The frame suites of the first host stay in use",
         HandlesStayWithTheFirstHost},
        {"tessel.frame.normalised", "Planar and DV formats are painted as 8-bit BGRA or VUYA 709",
         CompressedFormatsBecomePaintable},
    };
}

} // namespace conformance
