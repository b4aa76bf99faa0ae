#include "DocumentValues.h"

#include <kestrel/qelcore/serialization/JsonNumber.h>

#include <cmath>

namespace tessel::typed {

using qelcore::serialization::Value;

Value IntegerValue(std::int64_t number)
{
    return Value(number);
}

Value FloatValue(float number)
{
    constexpr float kMostWhole = 16'777'216.0F; // 2^24: beyond it not every whole number is a float
    if (std::trunc(number) == number && std::abs(number) <= kMostWhole) {
        return IntegerValue(static_cast<std::int64_t>(number));
    }
    return Value(qelcore::serialization::ShortestDoubleOf(number));
}

std::int64_t IntegerAt(const document::DocumentEditor& document, std::string_view path, std::int64_t standard)
{
    return qelcore::serialization::FindInteger(document.Find(path)).value_or(standard);
}

} // namespace tessel::typed
