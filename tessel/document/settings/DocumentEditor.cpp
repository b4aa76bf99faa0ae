#include "DocumentEditor.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <tessel/document/DocumentFacts.h>
#include <tessel/document/Wrapper.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace tessel::document {
namespace {

using qelcore::serialization::JSONParse;
using qelcore::serialization::Value;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kSpace = " \t\r\n";

/// Bytes of a text: from `begin` up to `end`.
struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// One member of an object in a text.
struct FoundMember {
    Span key;
    Span value;
};

/// Goes through a text that is known to be well-formed.
class Scanner {
public:
    Scanner(std::string_view text, std::size_t position) : mText(text), mPosition(position) {}

    [[nodiscard]] std::size_t SkipSpace()
    {
        mPosition = std::min(mText.find_first_not_of(kSpace, mPosition), mText.size());
        return mPosition;
    }

    [[nodiscard]] Span SkipValue()
    {
        Span span{SkipSpace(), 0};
        std::size_t depth = 0;
        do {
            switch (const char letter = mText[SkipSpace()]; letter) {
            case '"':
                SkipText();
                break;
            case '{':
            case '[':
                ++depth;
                ++mPosition;
                break;
            case '}':
            case ']':
                --depth;
                ++mPosition;
                break;
            case ',':
            case ':':
                ++mPosition;
                break;
            default: // a number or a word
                mPosition = std::min(mText.find_first_of(" \t\r\n,:]}", mPosition), mText.size());
            }
        } while (depth > 0);
        span.end = mPosition;
        return span;
    }

    /// Passes over a sign and the blanks before it.
    [[nodiscard]] bool Take(char sign)
    {
        if (SkipSpace() < mText.size() && mText[mPosition] == sign) {
            ++mPosition;
            return true;
        }
        return false;
    }

private:
    void SkipText()
    {
        for (++mPosition; mText[mPosition] != '"'; ++mPosition) {
            mPosition += mText[mPosition] == '\\' ? 1 : 0;
        }
        ++mPosition;
    }

    std::string_view mText;
    std::size_t mPosition;
};

/// An object in a text, as far as an edit needs it.
struct FoundObject {
    std::size_t open = 0;             ///< behind its brace
    std::optional<std::size_t> first; ///< where its first key begins
    std::size_t end = 0;              ///< behind its last value; `open` where it is empty
    std::string_view colon; ///< between its first key and that one's value, with blanks; none where empty
    std::string_view comma; ///< between its first two members, with blanks; none where there is one
    std::optional<FoundMember> member;
    std::optional<std::size_t> previousEnd; ///< behind the value before the member
    std::optional<std::size_t> nextBegin;   ///< where the key behind the member begins
};

/// Looks through the object that begins at `brace` for a key. Keys may be written with escapes.
FoundObject LookInto(std::string_view text, std::size_t brace, std::string_view key)
{
    FoundObject object;
    object.open = brace + 1;
    object.end = object.open;
    Scanner scanner(text, object.open);
    if (scanner.Take('}')) {
        return object;
    }
    do {
        FoundMember member;
        member.key = scanner.SkipValue();
        static_cast<void>(scanner.Take(':'));
        member.value = scanner.SkipValue();
        if (!object.first) {
            object.first = member.key.begin;
            object.colon = text.substr(member.key.end, member.value.begin - member.key.end);
        } else if (object.comma.empty()) {
            object.comma = text.substr(object.end, member.key.begin - object.end);
        }
        if (object.member && !object.nextBegin) {
            object.nextBegin = member.key.begin;
        }
        const std::size_t previousEnd = object.end;
        object.end = member.value.end;
        const Value name = JSONParse(text.substr(member.key.begin, member.key.end - member.key.begin));
        if (qelcore::serialization::FindText(name) == key) {
            object.member = member; // the last one counts
            object.previousEnd = previousEnd == object.open ? std::nullopt : std::optional(previousEnd);
            object.nextBegin = std::nullopt;
        }
    } while (scanner.Take(','));
    return object;
}

/// Where the object with the settings begins, inside its wrapper if it has one.
std::size_t OutermostBrace(std::string_view text)
{
    Scanner scanner(text, text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    const std::size_t brace = scanner.SkipSpace();
    const FoundObject wrapper = LookInto(text, brace, kWrapperKey);
    return wrapper.member ? wrapper.member->value.begin : brace;
}

std::pair<std::string_view, std::string_view> SplitPath(std::string_view path)
{
    const std::size_t point = path.find('.');
    return point == std::string_view::npos ? std::pair{path, std::string_view{}}
                                           : std::pair{path.substr(0, point), path.substr(point + 1)};
}

/// The value inside objects for all of a path: "a.b" makes {"a": {"b": value}}.
Value Nested(std::string_view path, const Value& value)
{
    if (path.empty()) {
        return value;
    }
    const auto [key, rest] = SplitPath(path);
    qelcore::serialization::Object object;
    qelcore::serialization::AddToObject(object, std::string(key), Nested(rest, value));
    return Value(std::move(object));
}

/// The blanks between the line break before `position` and it; nothing where other letters stand there.
std::optional<std::string> Indentation(std::string_view text, std::size_t position)
{
    const std::size_t line = text.substr(0, position).find_last_of('\n');
    if (line == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view before = text.substr(line + 1, position - line - 1);
    return before.find_first_not_of(" \t") == std::string_view::npos ? std::optional(std::string(before))
                                                                     : std::nullopt;
}

/// How the text ends its lines.
std::string_view LineEndOf(std::string_view text)
{
    const std::size_t end = text.find('\n');
    return end != std::string_view::npos && end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

/// The sign between the members of an object as its neighbours have it; `usual` where they have none on a line.
std::string SignLike(std::string_view neighbour, std::string_view usual)
{
    const bool isOnALine = !neighbour.empty() && neighbour.find_first_of("\r\n") == std::string_view::npos;
    return std::string(isOnALine ? neighbour : usual);
}

/// What stands before a key that is added behind an object's last value.
std::string SignsBefore(const FoundObject& object, const std::optional<std::string>& indentation,
                        std::string_view lineEnd)
{
    if (indentation) {
        return std::string(",").append(lineEnd) + *indentation;
    }
    return object.first ? SignLike(object.comma, object.colon == ":" ? "," : ", ") : std::string();
}

/// The blanks by which the text indents a level: those before its first key.
std::string UnitOf(std::string_view text)
{
    const std::size_t quote = text.find('"');
    const auto blanks = quote == std::string_view::npos ? std::nullopt : Indentation(text, quote);
    return blanks.value_or("  ");
}

/// As it stands in the text: on one line, or with every further line indented like the first and then, for each
/// level of the value, by the unit of the document, whose line ends it has.
std::string Printed(const Value& value, const std::optional<std::string>& indentation, const std::string& unit,
                    std::string_view lineEnd)
{
    constexpr std::size_t kPrintersUnit = 2; // blanks
    const std::string text = qelcore::serialization::GetJSONUTF8String(value, indentation.has_value());
    std::string printed;
    for (std::size_t at = 0; at < text.size();) {
        if (const char letter = text[at++]; letter != '\n') {
            printed += letter;
            continue;
        }
        printed += lineEnd;
        printed += *indentation;
        for (; text.compare(at, kPrintersUnit, "  ") == 0; at += kPrintersUnit) {
            printed += unit;
        }
    }
    return printed;
}

} // namespace

DocumentEditor::DocumentEditor(std::string text) : mText(std::move(text))
{
    std::string error;
    const Value root = JSONParse(mText, &error);
    if (root.IsNothing()) {
        throw importhost::HostError(error.empty() ? "not well-formed JSON" : error);
    }
    if (!Root().IsObject()) {
        throw importhost::HostError("expected a JSON object with a clip's settings");
    }
}

DocumentEditor DocumentEditor::Open(const std::filesystem::path& file)
{
    std::string text = DocumentText(file);
    try {
        return DocumentEditor(std::move(text));
    } catch (const importhost::HostError& error) {
        throw importhost::HostError(importhost::DisplayName(file) + ": " + error.what());
    }
}

Value DocumentEditor::Root() const
{
    return Unwrapped(JSONParse(mText));
}

Value DocumentEditor::Find(std::string_view path) const
{
    Value value = Root();
    while (!path.empty()) {
        const auto [key, rest] = SplitPath(path);
        value = qelcore::serialization::GetVariantInObject(value, key);
        path = rest;
    }
    return value;
}

void DocumentEditor::Set(std::string_view path, const Value& value)
{
    const std::string_view text = std::string_view(mText).substr(0, mText.find('\0'));
    std::size_t brace = OutermostBrace(text);
    const std::string unit = UnitOf(text);
    const std::string_view lineEnd = LineEndOf(text);
    std::string_view rest = path;
    for (;;) {
        const auto [key, below] = SplitPath(rest);
        const FoundObject object = LookInto(text, brace, key);
        if (!object.member) {
            const auto indentation = object.first ? Indentation(text, *object.first) : std::nullopt;
            const std::string name = qelcore::serialization::GetJSONUTF8String(Value(key), /*formatted=*/false);
            mText.insert(object.end, SignsBefore(object, indentation, lineEnd) + name +
                                         SignLike(object.colon, ": ") +
                                         Printed(Nested(below, value), indentation, unit, lineEnd));
            return;
        }
        const Span found = object.member->value;
        if (below.empty()) {
            mText.replace(found.begin, found.end - found.begin,
                          Printed(value, Indentation(text, object.member->key.begin), unit, lineEnd));
            return;
        }
        if (text[found.begin] != '{') {
            throw importhost::HostError('"' + std::string(path.substr(0, path.size() - below.size() - 1)) +
                                        "\" is no JSON object, so it has no \"" + std::string(below) + '"');
        }
        brace = found.begin;
        rest = below;
    }
}

void DocumentEditor::Remove(std::string_view path)
{
    for (;;) {
        const std::string_view text = std::string_view(mText).substr(0, mText.find('\0'));
        std::size_t brace = OutermostBrace(text);
        std::string_view rest = path;
        for (;;) {
            const auto [key, below] = SplitPath(rest);
            const FoundObject object = LookInto(text, brace, key);
            if (!object.member || (!below.empty() && text[object.member->value.begin] != '{')) {
                return;
            }
            if (below.empty()) {
                // With the comma before it, or that behind it, or all that is in the braces.
                const std::size_t begin =
                    object.previousEnd.value_or(object.nextBegin ? object.member->key.begin : object.open);
                const std::size_t end =
                    object.previousEnd ? object.member->value.end : object.nextBegin.value_or(object.end);
                mText.erase(begin, end - begin);
                break;
            }
            brace = object.member->value.begin;
            rest = below;
        }
    }
}

std::string DocumentEditor::CanonicalText() const
{
    return qelcore::serialization::GetJSONUTF8String(Root(), /*formatted=*/true) + '\n';
}

} // namespace tessel::document
