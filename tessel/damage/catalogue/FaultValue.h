/// The value behind a fault's name, as a person typed it.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::damage {

/// An unknown fault or an invalid value; one line for a person that says what would be right.
class FaultError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a value's parts, separated by ':', from left to right. Every function throws `FaultError`, which names
/// the fault and what its value may be.
class FaultValue {
public:
    /// @param form  how the value is written, for messages
    FaultValue(std::string_view fault, std::string_view text, std::string_view form);

    [[nodiscard]] bool IsAtEnd() const noexcept { return mNext == mParts.size(); }
    /// A number within limits.
    [[nodiscard]] double Number(double lowest, double highest);
    /// A whole number within limits.
    [[nodiscard]] std::int64_t Whole(std::int64_t lowest, std::int64_t highest);
    /// The index of one of the words.
    [[nodiscard]] std::size_t OneOf(std::initializer_list<std::string_view> words);
    /// Nothing may be left.
    void End() const;

    [[noreturn]] void Refuse(const std::string& why) const;
    /// The whole value as typed.
    [[nodiscard]] const std::string& Text() const noexcept { return mText; }

private:
    [[nodiscard]] const std::string& Next();

    std::string mFault;
    std::string mText;
    std::string mForm;
    std::vector<std::string> mParts;
    std::size_t mNext = 0;
};

} // namespace tessel::damage
