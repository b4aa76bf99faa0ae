#include "NewDocument.h"

#include "KeyTable.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::document {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::Array;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

/// The members below `prefix` with their standard values; a key without one is not written.
Value StandardObject(const std::string& prefix)
{
    Object object;
    for (const KeyInfo& key : AllKeys()) {
        if (!key.path.starts_with(prefix) || key.path.find('.', prefix.size()) != std::string::npos) {
            continue;
        }
        if (key.type == KeyType::Object) {
            AddToObject(object, key.path.substr(prefix.size()), StandardObject(key.path + '.'));
        } else if (!key.standard.empty()) {
            AddToObject(object, key.path.substr(prefix.size()),
                        qelcore::serialization::JSONParse(key.standard));
        }
    }
    return Value(std::move(object));
}

constexpr int kWidth = 1920;

/// The middles of `count` columns of equal width.
Value Middles(int count)
{
    Array places;
    for (int column = 0; column < count; ++column) {
        places.emplace_back(std::int64_t{(2 * column + 1) * kWidth / (2 * count)});
    }
    return Value(std::move(places));
}

Value Places(int columns, const std::vector<int>& rows)
{
    Array list;
    for (const int row : rows) {
        list.emplace_back(std::int64_t{row});
    }
    Object places;
    AddToObject(places, "xCoordinates", Middles(columns));
    AddToObject(places, "yCoordinates", Value(std::move(list)));
    return Value(std::move(places));
}

/// Grey patches for 8-bit codes of limited range, 16 being black and 235 white.
Value Greys(const std::vector<double>& codes)
{
    Array parts;
    for (const double code : codes) {
        const Value level((code - 16.0) / 219.0);
        parts.insert(parts.end(), 3, level);
    }
    return Value(std::move(parts));
}

Value BarColors()
{
    // White, yellow, cyan, green, magenta, red, blue, black.
    constexpr std::array<std::array<int, 3>, 8> kBars{
        {{1, 1, 1}, {1, 1, 0}, {0, 1, 1}, {0, 1, 0}, {1, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 0, 0}}};
    Array parts;
    for (const auto& bar : kBars) { // column by column, both rows of one before the next
        for (const double level : {0.75, 1.0}) {
            for (const int part : bar) {
                parts.emplace_back(level * part);
            }
        }
    }
    return Value(std::move(parts));
}

std::vector<double> Steps(double first, double last, int count)
{
    std::vector<double> steps;
    steps.reserve(static_cast<std::size_t>(count));
    for (int step = 0; step < count; ++step) {
        steps.push_back(first + (last - first) * step / (count - 1));
    }
    return steps;
}

} // namespace

std::string NewDocument()
{
    return qelcore::serialization::GetJSONUTF8String(StandardObject(""), /*formatted=*/true) + '\n';
}

Chart ColorBars()
{
    // Rows 0..359 bars at 75 %, 360..674 at 100 %, 675..899 and 900..1079 grey: borders lie half way between
    // neighbouring middles.
    constexpr int kLegalSteps = 16;
    constexpr int kFullSteps = 32;
    Object coordinates;
    AddToObject(coordinates, "colorSwatches", Places(8, {180, 540}));
    AddToObject(coordinates, "legalRangeGradient", Places(kLegalSteps, {810}));
    AddToObject(coordinates, "fullRangeGradient", Places(kFullSteps, {990}));
    Object colors;
    AddToObject(colors, "colorSwatches", BarColors());
    AddToObject(colors, "legalRangeGradient", Greys(Steps(16, 235, kLegalSteps)));
    AddToObject(colors, "fullRangeGradient", Greys(Steps(1, 254, kFullSteps)));
    return {Value(std::move(coordinates)), Value(std::move(colors))};
}

} // namespace tessel::document
