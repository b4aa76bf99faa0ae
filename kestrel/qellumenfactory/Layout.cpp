#include "Layout.h"

namespace qellumenfactory {

namespace {

std::string Compose(std::string_view name, Position position, std::string_view text)
{
    return std::string(name) + ':' + std::to_string(position.line) + ':' + std::to_string(position.column) +
           ": " + std::string(text);
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

} // namespace qellumenfactory
