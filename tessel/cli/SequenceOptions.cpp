#include "SequenceOptions.h"

#include "Commands.h"
#include "settings/ValueReaders.h"

#include <string>

namespace tessel::cli {
namespace {

template <class Number>
void Store(Pair (*read)(std::string_view), std::string_view text, const char* option, Number& first,
           Number& second)
{
    try {
        const Pair pair = read(text);
        first = static_cast<Number>(pair.first);
        second = static_cast<Number>(pair.second);
    } catch (const UsageError& error) {
        throw UsageError(std::string(option) + ": " + error.what());
    }
}

} // namespace

importhost::SequenceValues ParseSequenceValues(std::string_view size, std::string_view rate,
                                               std::string_view pixelAspect)
{
    importhost::SequenceValues values;
    Store(ReadSize, size, "--size", values.width, values.height);
    Store(ReadRate, rate, "--rate", values.timeScale, values.sampleSize);
    Store(ReadPixelAspect, pixelAspect, "--par", values.parNumerator, values.parDenominator);
    return values;
}

} // namespace tessel::cli
