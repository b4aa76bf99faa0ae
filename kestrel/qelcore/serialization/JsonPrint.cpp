#include "Json.h"
#include "JsonNumber.h"

#include <kestrel/qelcore/text/Unicode.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <vector>

namespace qelcore::serialization {
namespace {

using Kind = Value::Kind;
using Node = Value::Node;

void AppendText(std::string& out, std::string_view text)
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

    [[nodiscard]] std::string Print(const Node& root)
    {
        Append(root);
        while (!mOpen.empty()) {
            if (mOpen.back().next == mOpen.back().node.count) {
                Close();
            } else {
                Advance(mOpen.back());
            }
        }
        return std::move(mOut);
    }

private:
    /// A container whose parts are being printed.
    struct Open {
        const Node& node;
        std::uint32_t next = 0; ///< part to print
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
        const char closing = mOpen.back().node.kind == Kind::Array ? ']' : '}';
        mOpen.pop_back();
        NewLine();
        mOut += closing;
    }

    /// Prints the next part of the innermost container.
    void Advance(Open& open)
    {
        const std::uint32_t part = open.next++;
        if (part != 0) {
            mOut += ',';
        }
        NewLine();
        if (open.node.kind == Kind::Array) {
            Append(open.node.elements[part]);
            return;
        }
        const Value::Member& member = open.node.members[part];
        AppendText(mOut, {member.key.letters, member.key.count});
        mOut += mFormatted ? ": " : ":";
        Append(member.value);
    }

    /// Prints a value, or the beginning of one that has parts.
    void Append(const Node& node)
    {
        switch (node.kind) {
        case Kind::Nothing:
        case Kind::Null:
            mOut += "null";
            break;
        case Kind::Boolean:
            mOut += node.bits != 0 ? "true" : "false";
            break;
        case Kind::Signed:
            AppendInteger(mOut, static_cast<std::int64_t>(node.bits));
            break;
        case Kind::Unsigned:
            AppendInteger(mOut, node.bits);
            break;
        case Kind::Number:
            mOut += JSONNumberFromDouble(node.number);
            break;
        case Kind::Text:
            AppendText(mOut, {node.letters, node.count});
            break;
        case Kind::Array:
        case Kind::Object:
            AppendContainer(node, node.kind == Kind::Array ? "[]" : "{}");
            break;
        }
    }

    void AppendContainer(const Node& node, std::string_view brackets)
    {
        if (node.count == 0) {
            mOut += brackets;
            return;
        }
        mOut += brackets[0];
        mOpen.push_back({node});
    }

    bool mFormatted;
    std::string mOut;
    std::vector<Open> mOpen;
};

} // namespace

std::string GetJSONUTF8String(const Value& value, bool formatted)
{
    return Printer(formatted).Print(value.GetNode());
}

} // namespace qelcore::serialization
