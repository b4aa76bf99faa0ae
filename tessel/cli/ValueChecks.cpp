#include "ValueChecks.h"

#include <tessel/typed/NearMisses.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>

namespace tessel::cli {
namespace {

/// All of `text` as a number: no error, `result_out_of_range`, or `invalid_argument`.
template <class Number>
std::errc Parse(std::string_view text, Number& number) noexcept
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return stop == end ? error : std::errc::invalid_argument;
}

} // namespace

ValueCheck NotEmpty()
{
    return [](const std::string& text) { return std::string(text.empty() ? "must not be empty" : ""); };
}

ValueCheck Whole(std::int64_t least, std::int64_t most)
{
    return [least, most](std::string& text) {
        std::int64_t number = 0;
        const std::errc error = Parse(text, number);
        if (error == std::errc::result_out_of_range || (error == std::errc{} && number > most)) {
            return fmt::format("must be a whole number from {} to {}, not \"{}\"", least, most, text);
        }
        if (error != std::errc{} || number < least) {
            return fmt::format("must be a whole number from {} on, not \"{}\"", least, text);
        }
        text = std::to_string(number);
        return std::string{};
    };
}

ValueCheck OneOf(std::vector<std::string> words)
{
    return [words = std::move(words)](const std::string& text) {
        return std::find(words.begin(), words.end(), text) != words.end()
                   ? std::string{}
                   : fmt::format("must be one of {}, not \"{}\"{}", fmt::join(words, ", "), text,
                                 typed::DidYouMean(text, words));
    };
}

ValueCheck Seconds(double least, double most)
{
    return [least, most](const std::string& text) {
        double number = 0.0;
        // Written so that what is not a number fails.
        return Parse(text, number) == std::errc{} && number >= least && number <= most
                   ? std::string{}
                   : fmt::format("must be a number of seconds from {} to {}, not \"{}\"", least, most, text);
    };
}

} // namespace tessel::cli
