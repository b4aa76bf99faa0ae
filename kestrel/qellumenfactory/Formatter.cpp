#include "Formatter.h"

#include "Dialects.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace qellumenfactory {

namespace {

constexpr std::size_t kLongestLine = 110;
constexpr std::size_t kIndent = 4;

std::string FormatText(std::string_view text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '\n') {
            out += "\\n";
            continue;
        }
        if (c == '"' || c == '\\') {
            out += '\\';
        }
        out += c;
    }
    return out + '"';
}

std::string FormatNumber(double number)
{
    // The shortest text that reads back as the same number; without an exponent where a person would write
    // none.
    const double magnitude = std::abs(number);
    const bool isPlain = magnitude == 0.0 || (magnitude >= 1e-5 && magnitude < 1e15);
    // The shortest decimal form of a double has at most 24 characters, plain digits of these at most 26.
    std::array<char, 32> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                            isPlain ? std::chars_format::fixed : std::chars_format::general);
    (void)error;
    return {buffer.data(), end};
}

std::string FormatValue(const ParameterValue& value)
{
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return FormatText(*text);
    }
    if (const auto* const number = std::get_if<double>(&value)) {
        return FormatNumber(*number);
    }
    return std::get<bool>(value) ? "true" : "false";
}

class Formatter {
public:
    explicit Formatter(Dialect dialect) : mDialect(dialect) {}

    std::string Format(const LayoutNode& root)
    {
        Add(root, 0);
        return std::move(mText);
    }

private:
    void Line(std::size_t level, std::string_view text)
    {
        mText.append(level * kIndent, ' ').append(text) += '\n';
    }

    void Comments(const std::vector<std::string>& comments, std::size_t level)
    {
        for (const std::string& comment : comments) {
            Line(level, "//" + comment);
        }
    }

    [[nodiscard]] std::vector<std::string> Parameters(const LayoutNode& node) const
    {
        std::vector<std::string> texts;
        for (const Key key : KeysOf(node.kind)) {
            if (const Parameter* const parameter = node.Find(key)) {
                texts.push_back(std::string(NameOf(key, node.kind, mDialect)) +
                                (mDialect == Dialect::Lumen ? ": " : " = ") + FormatValue(parameter->value));
            }
        }
        return texts;
    }

    void Add(const LayoutNode& node, std::size_t level)
    {
        Comments(node.comments, level);
        // A widget without children has a block only in property sheets, so comments at its end move before it.
        if (!HoldsChildren(node.kind)) {
            Comments(node.closingComments, level);
        }
        const std::string name(NameOf(node.kind, mDialect));
        const std::vector<std::string> parameters = Parameters(node);
        const bool hasBlock =
            !node.children.empty() || (HoldsChildren(node.kind) && !node.closingComments.empty());
        if (mDialect == Dialect::Sable) {
            Line(level, name + " {");
            for (const std::string& parameter : parameters) {
                Line(level + 1, parameter);
            }
            AddChildren(node, level);
            return;
        }
        std::string joined;
        for (const std::string& parameter : parameters) {
            joined += (joined.empty() ? "" : ", ") + parameter;
        }
        const std::string_view close = hasBlock ? ") {" : ")";
        if (level * kIndent + name.size() + 1 + joined.size() + close.size() <= kLongestLine) {
            Line(level, name + '(' + joined + std::string(close));
        } else {
            Line(level, name + '(');
            for (std::size_t index = 0; index < parameters.size(); ++index) {
                Line(level + 1, parameters[index] + (index + 1 < parameters.size() ? "," : ""));
            }
            Line(level, close);
        }
        if (hasBlock) {
            AddChildren(node, level);
        }
    }

    void AddChildren(const LayoutNode& node, std::size_t level)
    {
        for (const LayoutNode& child : node.children) {
            Add(child, level + 1);
        }
        if (HoldsChildren(node.kind)) {
            Comments(node.closingComments, level + 1);
        }
        Line(level, "}");
    }

    Dialect mDialect;
    std::string mText;
};

} // namespace

std::string FormatLayout(const LayoutNode& root, Dialect dialect)
{
    return Formatter(dialect).Format(root);
}

} // namespace qellumenfactory
