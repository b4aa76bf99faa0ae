#include "Layout.h"

#include "Dialects.h"

#include <cstddef>

namespace qellumenfactory {

namespace {

std::string Compose(std::string_view name, Position position, std::string_view text)
{
    return std::string(name) + ':' + std::to_string(position.line) + ':' + std::to_string(position.column) +
           ": " + std::string(text);
}

/// The name of a widget in messages about differences.
std::string Describe(const LayoutNode& node)
{
    const std::string identifier = node.Text(Key::Identifier);
    std::string text(NameOf(node.kind, Dialect::Lumen));
    return identifier.empty() ? text : text + " \"" + identifier + '"';
}

std::optional<std::string> FindParameterDifference(const LayoutNode& a, const LayoutNode& b)
{
    for (const Key key : KeysOf(a.kind)) {
        const Parameter* const first = a.Find(key);
        const Parameter* const second = b.Find(key);
        const bool same =
            first == nullptr || second == nullptr ? first == second : first->value == second->value;
        if (!same) {
            return Describe(a) + " differs in " + std::string(NameOf(key, a.kind, Dialect::Lumen));
        }
    }
    return std::nullopt;
}

} // namespace

LayoutError::LayoutError(std::string_view name, Position position, std::string_view text)
    : Exception(Compose(name, position, text)), std::runtime_error(Message()), mPosition(position)
{
}

LayoutError::~LayoutError() = default;

const Parameter* LayoutNode::Find(Key key) const noexcept
{
    for (const Parameter& parameter : parameters) {
        if (parameter.key == key) {
            return &parameter;
        }
    }
    return nullptr;
}

std::string LayoutNode::Text(Key key, std::string_view fallback) const
{
    const Parameter* const parameter = Find(key);
    return parameter == nullptr ? std::string(fallback) : std::get<std::string>(parameter->value);
}

std::optional<double> LayoutNode::Number(Key key) const
{
    const Parameter* const parameter = Find(key);
    return parameter == nullptr ? std::nullopt : std::optional(std::get<double>(parameter->value));
}

double LayoutNode::Number(Key key, double fallback) const
{
    return Number(key).value_or(fallback);
}

bool LayoutNode::Truth(Key key, bool fallback) const
{
    const Parameter* const parameter = Find(key);
    return parameter == nullptr ? fallback : std::get<bool>(parameter->value);
}

// This recursion is shallow: the parser limits the nesting.
std::optional<std::string> FindDifference(const LayoutNode& a, const LayoutNode& b)
{
    if (a.kind != b.kind) {
        return Describe(a) + " faces " + Describe(b);
    }
    if (auto difference = FindParameterDifference(a, b)) {
        return difference;
    }
    if (a.children.size() != b.children.size()) {
        return Describe(a) + " holds " + std::to_string(a.children.size()) + " widgets here and " +
               std::to_string(b.children.size()) + " there";
    }
    for (std::size_t index = 0; index < a.children.size(); ++index) {
        if (auto difference = FindDifference(a.children[index], b.children[index])) {
            return difference;
        }
    }
    return std::nullopt;
}

} // namespace qellumenfactory
