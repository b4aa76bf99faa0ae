#include "Arena.h"
#include "ContainerSizes.h"
#include "Json.h"
#include "JsonNumber.h"
#include "SurrogateEscapes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Only this file uses the library. Its symbols stay hidden, and its internal checks of numbers, which depend
// on the process's locale, are switched off.
#define JSON_ASSERT(condition) ((void)0)
#pragma GCC visibility push(hidden)
#include <nlohmann/json.hpp>
#pragma GCC visibility pop

namespace qelcore::serialization {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsContinuationOfCharacter(char byte) noexcept
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Which line and column the byte before `place` is in, as an editor counts them: in characters.
std::string LineAndColumn(std::string_view text, std::size_t place)
{
    std::string_view before = text.substr(0, std::min(place, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    before.remove_prefix(before.rfind('\n') + 1); // npos + 1 is 0
    const auto column =
        std::count_if(before.begin(), before.end(), [](char byte) { return !IsContinuationOfCharacter(byte); });
    return "line " + std::to_string(line) + ", column " + std::to_string(std::max<std::ptrdiff_t>(1, column));
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

/// Receives a document's pieces in their order and builds the tree, with a list of the containers that are open
/// instead of recursion. Every container is written where it stays: its size is known before it begins.
class TreeBuilder {
public:
    using Node = Value::Node;
    using Kind = Value::Kind;

    /// @param sizes  Of the text's containers; borrowed.
    TreeBuilder(std::string_view text, const std::vector<std::uint32_t>& sizes) : mText(text), mSizes(sizes) {}

    [[nodiscard]] Value TakeRoot() { return {std::move(mArena), mRoot}; }
    [[nodiscard]] std::string TakeError() { return std::move(mError); }

    // What follows is the set of functions that the library calls; false from one of them ends the parsing.
    // NOLINTBEGIN(readability-identifier-naming)
    bool null() { return Add(MakeNode(Kind::Null)); }
    bool boolean(bool value) { return Add(MakeNode(Kind::Boolean, value ? 1 : 0)); }
    bool number_integer(std::int64_t value)
    {
        return Add(MakeNode(Kind::Signed, static_cast<std::uint64_t>(value)));
    }

    bool number_unsigned(std::uint64_t value)
    {
        return Add(MakeNode(static_cast<std::int64_t>(value) < 0 ? Kind::Unsigned : Kind::Signed, value));
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
        Node node = MakeNode(Kind::Number);
        node.number = *value;
        return Add(node);
    }

    bool string(std::string& text) { return Add(CopyText(text)); }
    bool binary(std::vector<std::uint8_t>& /*bytes*/) { return false; } // not in texts

    bool start_object(std::size_t /*size*/) { return Begin(Kind::Object); }
    bool start_array(std::size_t /*size*/) { return Begin(Kind::Array); }
    bool end_object()
    {
        SortMembers(mOpen.back());
        return End();
    }
    bool end_array() { return End(); }

    bool key(std::string& text)
    {
        mOpen.back().key = CopyText(text);
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
        Kind kind;
        std::uint32_t capacity;
        std::uint32_t count = 0;
        Node* elements = nullptr;         ///< of an array
        Value::Member* members = nullptr; ///< of an object
        Node key{};                       ///< of an object's next value
    };

    static std::string NumberTooLarge() { return "a number is too large for a double"; }

    static Node MakeNode(Kind kind, std::uint64_t bits = 0) noexcept
    {
        Node node;
        node.kind = kind;
        node.bits = bits;
        return node;
    }

    Node CopyText(const std::string& text)
    {
        char* const letters = mArena->Allocate<char>(text.size());
        std::copy(text.begin(), text.end(), letters);
        Node node = MakeNode(Kind::Text);
        node.count = static_cast<std::uint32_t>(text.size()); // no text is longer than a document may be
        node.letters = letters;
        return node;
    }

    bool Begin(Kind kind)
    {
        Open open{.kind = kind, .capacity = mNextSize < mSizes.size() ? mSizes[mNextSize] : 0};
        ++mNextSize;
        if (kind == Kind::Array) {
            open.elements = mArena->Allocate<Node>(open.capacity);
        } else {
            open.members = mArena->Allocate<Value::Member>(open.capacity);
        }
        mOpen.push_back(open);
        return true;
    }

    /// Ascending keys; of equal ones the last stays.
    static void SortMembers(Open& open)
    {
        const auto keyOf = [](const Value::Member& member) {
            return std::string_view(member.key.letters, member.key.count);
        };
        const auto isBefore = [&](const Value::Member& a, const Value::Member& b) {
            return keyOf(a) < keyOf(b);
        };
        Value::Member* const first = open.members;
        Value::Member* const last = first + open.count;
        std::stable_sort(first, last, isBefore);
        Value::Member* kept = first;
        for (const Value::Member* member = first; member != last; ++member) {
            const bool isReplaced = member + 1 != last && !isBefore(*member, *(member + 1));
            if (!isReplaced) {
                *kept++ = *member;
            }
        }
        open.count = static_cast<std::uint32_t>(kept - first);
    }

    bool End()
    {
        const Open& open = mOpen.back();
        Node node = MakeNode(open.kind);
        node.count = open.count;
        if (open.kind == Kind::Array) {
            node.elements = open.elements;
        } else {
            node.members = open.members;
        }
        mOpen.pop_back();
        return Add(node);
    }

    bool Add(const Node& node)
    {
        if (mOpen.empty()) {
            mRoot = node;
            return true;
        }
        Open& open = mOpen.back();
        if (open.count == open.capacity) {
            mError = "a value stands where none may"; // never in a text that is well-formed so far
            return false;
        }
        if (open.kind == Kind::Array) {
            open.elements[open.count++] = node;
        } else {
            open.members[open.count++] = {open.key, node};
        }
        return true;
    }

    std::string_view mText;
    const std::vector<std::uint32_t>& mSizes;
    std::size_t mNextSize = 0; ///< of the next container
    std::shared_ptr<Arena> mArena = std::make_shared<Arena>();
    std::vector<Open> mOpen;
    Node mRoot;
    std::string mError;
};

} // namespace

Value JSONParse(std::string_view text, std::string* error)
{
    const auto fail = [error](std::string reason) {
        if (error != nullptr) {
            *error = std::move(reason);
        }
        return Value();
    };
    text = text.substr(0, text.find('\0'));
    if (text.size() > kLongestJSONText) {
        return fail("the text is longer than " + std::to_string(kLongestJSONText) + " bytes");
    }
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        text.remove_prefix(kByteOrderMark.size());
    }
    std::string storage;
    text = WithoutUnpairedSurrogates(text, storage);
    const ContainerSizes containers = FindContainerSizes(text, kDeepestJSONNesting);
    if (containers.tooDeep) {
        return fail(LineAndColumn(text, *containers.tooDeep + 1) + ": nested deeper than " +
                    std::to_string(kDeepestJSONNesting) + " levels");
    }
    TreeBuilder builder(text, containers.sizes);
    if (!nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) {
        return fail(builder.TakeError());
    }
    return builder.TakeRoot();
}

} // namespace qelcore::serialization
