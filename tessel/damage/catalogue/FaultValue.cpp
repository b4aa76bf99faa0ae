#include "FaultValue.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace tessel::damage {
namespace {

template <class Number>
bool Parse(const std::string& text, Number& number)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + (text.starts_with('+') ? 1 : 0), end, number);
    return error == std::errc() && stop == end;
}

} // namespace

FaultValue::FaultValue(std::string_view fault, std::string_view text, std::string_view form)
    : mFault(fault), mText(text), mForm(form)
{
    for (std::size_t begin = 0; begin <= mText.size() && !mText.empty();) {
        const std::size_t end = std::min(mText.find(':', begin), mText.size());
        mParts.push_back(mText.substr(begin, end - begin));
        begin = end + 1;
    }
}

void FaultValue::Refuse(const std::string& why) const
{
    throw FaultError(fmt::format("--fault {}{}{}: {}{}{}", mFault, mText.empty() ? "" : "=", mText, why,
                                 mForm.empty() ? "" : "; the value is ", mForm));
}

const std::string& FaultValue::Next()
{
    if (IsAtEnd()) {
        Refuse("something is missing");
    }
    return mParts[mNext++];
}

double FaultValue::Number(double lowest, double highest)
{
    double number = 0;
    const std::string& part = Next();
    if (!Parse(part, number)) {
        Refuse(fmt::format("'{}' is no number", part));
    }
    if (!(number >= lowest && number <= highest)) {
        Refuse(fmt::format("{} is not within {} to {}", part, lowest, highest));
    }
    return number;
}

std::int64_t FaultValue::Whole(std::int64_t lowest, std::int64_t highest)
{
    std::int64_t number = 0;
    const std::string& part = Next();
    if (!Parse(part, number)) {
        Refuse(fmt::format("'{}' is no whole number", part));
    }
    if (number < lowest || number > highest) {
        Refuse(fmt::format("{} is not within {} to {}", part, lowest, highest));
    }
    return number;
}

std::size_t FaultValue::OneOf(std::initializer_list<std::string_view> words)
{
    const std::string& part = Next();
    const auto* const word = std::find(words.begin(), words.end(), part);
    if (word == words.end()) {
        Refuse(fmt::format("'{}' is not one of {}", part, fmt::join(words, ", ")));
    }
    return static_cast<std::size_t>(word - words.begin());
}

void FaultValue::End() const
{
    if (!IsAtEnd()) {
        Refuse(fmt::format("'{}' is too much", mParts[mNext]));
    }
}

} // namespace tessel::damage
