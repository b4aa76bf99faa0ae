#include "SequenceOptions.h"

#include "Commands.h"

#include <tessel/typed/SettingError.h>
#include <tessel/typed/ValueReaders.h>

#include <string>

namespace tessel::cli {
namespace {

template <class Number>
void Store(typed::Pair (*read)(std::string_view), std::string_view text, const char* option, Number& first,
           Number& second)
{
    try {
        const typed::Pair pair = read(text);
        first = static_cast<Number>(pair.first);
        second = static_cast<Number>(pair.second);
    } catch (const typed::SettingError& error) {
        throw UsageError(std::string(option) + ": " + error.what());
    }
}

} // namespace

importhost::SequenceValues ParseSequenceValues(std::string_view size, std::string_view rate,
                                               std::string_view pixelAspect)
{
    importhost::SequenceValues values;
    Store(typed::ReadSize, size, "--size", values.width, values.height);
    Store(typed::ReadRate, rate, "--rate", values.timeScale, values.sampleSize);
    Store(typed::ReadPixelAspect, pixelAspect, "--par", values.parNumerator, values.parDenominator);
    return values;
}

} // namespace tessel::cli
