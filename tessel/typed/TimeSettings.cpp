#include "TimeSettings.h"

#include "DocumentValues.h"
#include "NearMisses.h"
#include "SettingError.h"
#include "ValueReaders.h"

#include <tessel/document/settings/FrameRates.h>

#include <fmt/format.h>

#include <cstdint>

namespace tessel::typed {

using document::DocumentEditor;

void ApplyRate(const TypedValues& values, DocumentEditor& document)
{
    const auto [numerator, denominator] = ReadRate(values.front());
    const std::int64_t ticks = document::TicksPerFrame(numerator, denominator);
    if (ticks < 1) {
        throw SettingError(fmt::format("{} frames a second are more than there are ticks", values.front()));
    }
    document.Set("mVideoFrameRate.ticksperframe", IntegerValue(ticks));
}

std::optional<std::string> RemarkOnRate(const TypedValues& values)
{
    const auto [numerator, denominator] = ReadRate(values.front());
    if (document::IsExactRate(numerator, denominator)) {
        return std::nullopt;
    }
    return fmt::format("{} frames a second are no whole number of ticks; the nearest, {} ticks a frame, is "
                       "written",
                       values.front(), document::TicksPerFrame(numerator, denominator));
}

void ApplyDuration(const TypedValues& values, DocumentEditor& document)
{
    const std::int64_t perFrame = IntegerAt(document, "mVideoFrameRate.ticksperframe", 0);
    if (perFrame <= 0) {
        throw SettingError("needs a frame rate: give one, too");
    }
    document.Set("mVideoDuration.ticks", IntegerValue(ReadDuration(values.front(), perFrame)));
}

std::vector<std::string> RateChoices()
{
    return NamesOfRows(document::NamedFrameRates());
}

} // namespace tessel::typed
