#include "Json.h"
#include "JsonNumber.h"

#include <kestrel/qelcore/text/Unicode.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <utility>

namespace qelcore::serialization {
namespace {

void AppendText(std::string& out, const std::string& text)
{
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    out += '"';
    for (const char letter : text::Repaired(text)) {
        const auto byte = static_cast<unsigned char>(letter);
        switch (letter) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (byte < 0x20) {
                out += "\\u00";
                out += kHexDigits[byte >> 4];
                out += kHexDigits[byte & 0x0F];
            } else {
                out += letter;
            }
        }
    }
    out += '"';
}

template <class Integer>
void AppendInteger(std::string& out, Integer value)
{
    std::array<char, 24> digits{}; // 64 bits take at most 20 digits and a sign
    const std::to_chars_result end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    out.append(digits.data(), end.ptr);
}

/// Levels below are not indented further: the text of a deep document would grow with the square of its depth.
constexpr std::size_t kDeepestIndentation = 100;

/// Prints a tree with a list of the containers that are open, because the stack's depth does not suffice for
/// every document.
class Printer {
public:
    explicit Printer(bool formatted) : mFormatted(formatted) {}

    [[nodiscard]] std::string Print(const Value& root)
    {
        Append(root);
        while (!mOpen.empty()) {
            if (mOpen.back().IsDone()) {
                Close();
            } else {
                Advance(mOpen.back());
            }
        }
        return std::move(mOut);
    }

private:
    /// A container whose children are being printed: an array or an object.
    struct Open {
        explicit Open(const Array& elements) : array(&elements) {}
        explicit Open(const Object& entries) : object(&entries), entry(entries.begin()) {}

        [[nodiscard]] bool IsDone() const
        {
            return array != nullptr ? element == array->size() : entry == object->end();
        }

        const Array* array = nullptr;
        std::size_t element = 0; ///< next one to print
        const Object* object = nullptr;
        Object::const_iterator entry; ///< next one to print
        bool isFirst = true;
    };

    void NewLine()
    {
        if (mFormatted) {
            mOut += '\n';
            mOut.append(2 * std::min(mOpen.size(), kDeepestIndentation), ' ');
        }
    }

    void Close()
    {
        const char closing = mOpen.back().array != nullptr ? ']' : '}';
        mOpen.pop_back();
        NewLine();
        mOut += closing;
    }

    /// Prints the next child of the innermost container.
    void Advance(Open& open)
    {
        if (!std::exchange(open.isFirst, false)) {
            mOut += ',';
        }
        NewLine();
        const Value* child = nullptr;
        if (open.array != nullptr) {
            child = (*open.array)[open.element++].get();
        } else {
            AppendText(mOut, open.entry->first);
            mOut += mFormatted ? ": " : ":";
            child = (open.entry++)->second.get();
        }
        if (child == nullptr) {
            mOut += "null";
        } else {
            Append(*child);
        }
    }

    /// Prints a value, or the beginning of one that has children.
    void Append(const Value& value)
    {
        std::visit([this](const auto& content) { AppendContent(content); }, value.Get());
    }

    void AppendContent(std::monostate /*nothing*/) { mOut += "null"; }
    void AppendContent(bool boolean) { mOut += boolean ? "true" : "false"; }
    void AppendContent(std::int64_t integer) { AppendInteger(mOut, integer); }
    void AppendContent(std::uint64_t integer) { AppendInteger(mOut, integer); }
    void AppendContent(double number) { mOut += JSONNumberFromDouble(number); }
    void AppendContent(const std::string& text) { AppendText(mOut, text); }

    void AppendContent(const Array& array)
    {
        if (array.empty()) {
            mOut += "[]";
            return;
        }
        mOut += '[';
        mOpen.emplace_back(array);
    }

    void AppendContent(const Object& object)
    {
        if (object.empty()) {
            mOut += "{}";
            return;
        }
        mOut += '{';
        mOpen.emplace_back(object);
    }

    bool mFormatted;
    std::string mOut;
    std::vector<Open> mOpen;
};

} // namespace

std::string GetJSONUTF8String(const Value& value, bool formatted)
{
    return Printer(formatted).Print(value);
}

} // namespace qelcore::serialization
