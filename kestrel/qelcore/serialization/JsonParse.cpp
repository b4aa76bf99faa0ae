#include "Json.h"
#include "JsonNumber.h"
#include "SurrogateEscapes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

// The library is this file's own business: none of its names leave this library, and its internal checks of
// numbers, which look at the process's locale, do not end the process.
#define JSON_ASSERT(condition) ((void)0)
#pragma GCC visibility push(hidden)
#include <nlohmann/json.hpp>
#pragma GCC visibility pop

namespace qelcore::serialization {
namespace {

/// Where `place` is in `text`, as people count.
std::string LineAndColumn(std::string_view text, std::size_t place)
{
    const std::string_view before = text.substr(0, std::min(place, text.size()));
    const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    return "line " + std::to_string(line) + ", column " +
           std::to_string(std::max<std::size_t>(1, before.size() - lineStart));
}

/// The library's message without its prefix, and without the text that it read last: that may be of any
/// length and is not always UTF-8.
std::string Reason(std::string_view message)
{
    constexpr std::string_view kReasonMark = " - ";
    if (const std::size_t mark = message.find(kReasonMark); mark != std::string_view::npos) {
        message.remove_prefix(mark + kReasonMark.size());
    }
    std::string reason(message);
    const std::size_t lastRead = reason.find("; last read: '");
    if (lastRead != std::string::npos) {
        reason.erase(lastRead, reason.rfind('\'') + 1 - lastRead);
    }
    return reason;
}

/// Receives a document's pieces in their order and builds the tree, with a list of the containers that are
/// open instead of recursion.
class TreeBuilder {
public:
    explicit TreeBuilder(std::string_view text) : mText(text) {}

    [[nodiscard]] ValuePtr TakeRoot() { return std::move(mRoot); }
    [[nodiscard]] std::string TakeError() { return std::move(mError); }

    // What follows is the set of functions that the library calls; false from one of them ends the parsing.
    // NOLINTBEGIN(readability-identifier-naming)
    bool null() { return Add(Value()); }
    bool boolean(bool value) { return Add(Value(value)); }
    bool number_integer(std::int64_t value) { return Add(Value(value)); }

    bool number_unsigned(std::uint64_t value)
    {
        const auto asSigned = static_cast<std::int64_t>(value);
        return asSigned < 0 ? Add(Value(value)) : Add(Value(asSigned));
    }

    bool number_float(double /*value*/, std::string number)
    {
        // The library has converted the number with the locale's decimal point, which it has also put into
        // the text.
        constexpr std::string_view kNumberLetters = "+-0123456789eE";
        for (char& letter : number) {
            if (kNumberLetters.find(letter) == std::string_view::npos) {
                letter = '.';
            }
        }
        const std::optional<double> value = DoubleFromJSONNumber(number);
        if (!value) {
            mError = NumberTooLarge();
            return false;
        }
        return Add(Value(*value));
    }

    bool string(std::string& text) { return Add(Value(std::move(text))); }
    bool binary(std::vector<std::uint8_t>& /*bytes*/) { return false; } // not in texts

    bool start_object(std::size_t /*size*/) { return Begin(Object()); }
    bool start_array(std::size_t /*size*/) { return Begin(Array()); }
    bool end_object() { return End(); }
    bool end_array() { return End(); }

    bool key(std::string& text)
    {
        mOpen.back().key = std::move(text);
        return true;
    }

    template <class Exception>
    bool parse_error(std::size_t place, const std::string& /*lastRead*/, const Exception& exception)
    {
        const bool isNumber = exception.id == kNumberOverflow;
        mError = LineAndColumn(mText, place) + ": " + (isNumber ? NumberTooLarge() : Reason(exception.what()));
        return false;
    }
    // NOLINTEND(readability-identifier-naming)

private:
    static constexpr int kNumberOverflow = 406; // the library's number for it

    struct Open {
        Value::Storage content;
        std::string key; ///< of an object's next value
    };

    static std::string NumberTooLarge() { return "a number is too large for a double"; }

    bool Begin(Value::Storage content)
    {
        mOpen.push_back({std::move(content), {}});
        return true;
    }

    bool End()
    {
        Value value(std::move(mOpen.back().content));
        mOpen.pop_back();
        return Add(std::move(value));
    }

    bool Add(Value value)
    {
        auto shared = std::make_shared<const Value>(std::move(value));
        if (mOpen.empty()) {
            mRoot = std::move(shared);
        } else if (auto* const array = std::get_if<Array>(&mOpen.back().content)) {
            array->push_back(std::move(shared));
        } else {
            std::get<Object>(mOpen.back().content)
                .insert_or_assign(std::move(mOpen.back().key), std::move(shared));
        }
        return true;
    }

    std::string_view mText;
    std::vector<Open> mOpen;
    ValuePtr mRoot;
    std::string mError;
};

} // namespace

ValuePtr JSONParse(std::string_view text, std::string* error)
{
    text = text.substr(0, text.find('\0'));
    std::string storage;
    text = WithoutUnpairedSurrogates(text, storage);
    TreeBuilder builder(text);
    if (nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) {
        return builder.TakeRoot();
    }
    if (error != nullptr) {
        *error = builder.TakeError();
    }
    return nullptr;
}

} // namespace qelcore::serialization
