/// The swatch chart through selector 47.

#include "Documents.h"
#include "TesselChecks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace conformance {

namespace {

using Color = std::array<float, 4>; // blue, green, red, alpha

constexpr std::uint32_t kBGRAFloat = 0x61724742; // "BGra"

/// Three bands. The first has two columns and two rows, the others one of each.
struct Chart {
    std::string width = "1920";
    std::string height = "1080";
    std::uint32_t pixelFormat = kBGRAFloat;
    std::string firstX = "[400, 1200]";
    std::string firstY = "[100, 300]";
    std::string firstColors = "[1, 0, 0, 0, 1, 0, 0, 0, 1, 0.25, 0.5, 2]";
    std::string secondY = "[600]";
    std::string thirdY = "[900]";
    bool number = false;

    [[nodiscard]] std::string Text() const
    {
        std::string document =
            Document(std::string("\"mDrawFrameFieldNumber\": ") + (number ? "true" : "false") +
                     ", \"mSwatchCoordinates\": {\"colorSwatches\": {\"xCoordinates\": " + firstX +
                     ", \"yCoordinates\": " + firstY +
                     "}, \"legalRangeGradient\": {\"xCoordinates\": [5], \"yCoordinates\": " + secondY +
                     "}, \"fullRangeGradient\": {\"xCoordinates\": [5], \"yCoordinates\": " + thirdY +
                     "}}, \"mSwatchColors\": {\"colorSwatches\": " + firstColors +
                     ", \"legalRangeGradient\": [0.1, 0.2, 0.3], \"fullRangeGradient\": [0.4, 0.5, 0.6]},");
        const auto replace = [&document](const std::string& from, const std::string& to) {
            document.replace(document.find(from), from.size(), to);
        };
        replace("\"mFrameWidth\": 32", "\"mFrameWidth\": " + width);
        replace("\"mFrameHeight\": 18", "\"mFrameHeight\": " + height);
        replace("\"mRenderFormat\": 0", "\"mRenderFormat\": 2");
        replace("1634887522", std::to_string(pixelFormat));
        return document;
    }
};

/// The pixel at picture row `y` from the top: charts are painted bottom row first in memory.
Color ColorAt(const ForeignFrame& frame, int x, int y)
{
    Color color;
    std::memcpy(color.data(), frame.Row(1079 - y) + x * 16, 16);
    return color;
}

bool IsUnpainted(const ForeignFrame& frame)
{
    for (int row = 0; row < frame.rows; ++row) {
        const std::uint8_t* pixels = frame.Row(row);
        // The first byte is the filling, and each byte equals the next.
        if (pixels[0] != Foreign().filling || std::memcmp(pixels, pixels + 1, frame.usedBytes - 1) != 0) {
            return false;
        }
    }
    return true;
}

std::int32_t Render(const Plugin& plugin, const Chart& chart)
{
    Foreign().frames.clear(); // 33 MB each
    void* frame = nullptr;
    const std::int32_t answer = RequestFrame(plugin, OpenDocument(plugin, chart.Text()), 0, frame);
    Expect(Foreign().frames.back()->GuardsIntact(), "bytes outside the picture were written");
    return answer;
}

void PatchesStandWhereTheyShould(Plugin& plugin)
{
    ExpectEqual(Render(plugin, Chart{}), 0, "selector 47");
    const ForeignFrame& frame = *Foreign().frames.back();
    const Color red = {0, 0, 1, 1};
    const Color green = {0, 1, 0, 1};
    const Color blue = {1, 0, 0, 1};
    const Color beyond = {2, 0.5F, 0.25F, 1};
    const Color second = {0.3F, 0.2F, 0.1F, 1};
    const Color third = {0.6F, 0.5F, 0.4F, 1};
    struct Place {
        int x;
        int y;
        Color color;
    };
    // Columns part at (400 + 1200) / 2 = 800, rows of band 1 at (100 + 300) / 2 = 200, bands at
    // 300 + (600 - 300) / 2 = 450 and 600 + (900 - 600) / 2 = 750. Colours go column by column.
    for (const Place& place : {Place{0, 0, red},
                               {799, 199, red},
                               {0, 200, green},
                               {799, 449, green},
                               {800, 0, blue},
                               {1919, 199, blue},
                               {800, 200, beyond},
                               {1919, 449, beyond},
                               {0, 450, second},
                               {1919, 749, second},
                               {0, 750, third},
                               {1919, 1079, third}}) {
        Expect(ColorAt(frame, place.x, place.y) == place.color,
               "the patch at " + std::to_string(place.x) + ", " + std::to_string(place.y) + " is wrong");
    }
}

void BrokenRulesFail(Plugin& plugin)
{
    Chart chart;
    const auto expectRefused = [&plugin](const Chart& broken, const std::string& what) {
        ExpectEqual(Render(plugin, broken), 5, what);
        Expect(IsUnpainted(*Foreign().frames.back()), what + ": something was painted");
    };
    chart.number = true;
    for (const auto& [field, value, what] : {std::tuple{&Chart::width, "1919", "a width of 1919"},
                                             {&Chart::height, "1079", "a height of 1079"},
                                             {&Chart::firstX, "[]", "no columns"},
                                             {&Chart::firstY, "[]", "no rows"},
                                             {&Chart::firstColors, "[]", "no colours"},
                                             {&Chart::firstColors, "[1, 0, 0]", "too few colours"},
                                             {&Chart::firstY, "[100, 600]", "band 1 reaching band 2"},
                                             {&Chart::secondY, "[900]", "band 2 reaching band 3"},
                                             {&Chart::thirdY, "[1080]", "band 3 reaching row 1080"}}) {
        Chart broken = chart;
        broken.*field = value;
        expectRefused(broken, what);
    }
}

void OtherFormatsStayUnpainted(Plugin& plugin)
{
    Chart chart;
    chart.pixelFormat = 0x61726762; // "bgra"
    ExpectEqual(Render(plugin, chart), 0, "8-bit BGRA");
    Expect(IsUnpainted(*Foreign().frames.back()), "8-bit BGRA was painted");
    chart.number = true;
    ExpectEqual(Render(plugin, chart), 0, "8-bit BGRA with the number");
    Expect(!IsUnpainted(*Foreign().frames.back()), "the number is missing");
}

void HostileListsStayInside(Plugin& plugin)
{
    for (const std::string x : {"[1200, 400]", "[-5, 2147483647]", "[-2147483648, -1]", "[0, 0]"}) {
        for (const std::string y : {"[300, 100]", "[0, 0]", "[2147483647, 5]", "[-1, 100]"}) {
            Chart chart;
            chart.firstX = x;
            chart.firstY = y;
            const std::int32_t answer = Render(plugin, chart);
            Expect(answer == 0 || answer == 5, "the answer is " + std::to_string(answer));
        }
    }
}

} // namespace

std::vector<Check> TesselSwatchChecks()
{
    return {
        {"tessel.swatches.places", "Patches meet half way between their positions; colours go column by column",
         PatchesStandWhereTheyShould},
        {"tessel.swatches.rules",
         "A chart that breaks a rule answers 5 and is left unpainted, without a number", BrokenRulesFail},
        {"tessel.swatches.other-format", "In any format but float BGRA only the number is drawn",
         OtherFormatsStayUnpainted},
        {"tessel.swatches.hostile", "Unsorted, negative and huge positions paint inside the frame only",
         HostileListsStayInside},
    };
}

} // namespace conformance
