#include "RequiredRow.h"

#include "SettingError.h"

#include <fmt/format.h>

namespace tessel::typed {

void RefuseWord(std::string_view word, std::string_view expected, const std::vector<std::string>& words)
{
    throw SettingError(fmt::format("must be {}, not \"{}\"{}", expected, word, DidYouMean(word, words)));
}

void RefuseName(std::string_view word, const std::vector<std::string>& names)
{
    RefuseWord(word, fmt::format("one of {}", fmt::join(names, ", ")), names);
}

} // namespace tessel::typed
