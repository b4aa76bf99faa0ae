#include "HelpData.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <utility>

namespace tessel::cli {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::ArrayOf;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

Value Texts(const std::vector<std::string>& texts)
{
    return ArrayOf(texts, [](const std::string& text) { return Value(text); });
}

const char* NameOf(FileKind kind)
{
    switch (kind) {
    case FileKind::Any:
        return "any";
    case FileKind::Clip:
        return "clip";
    case FileKind::None:
        break;
    }
    return "";
}

Value OptionAsJson(const OptionText& option)
{
    Object object;
    AddToObject(object, "names", Texts(option.names));
    AddToObject(object, "value", Value(option.value));
    AddToObject(object, "text", Value(option.text));
    AddToObject(object, "choices", Texts(option.choices));
    AddToObject(object, "default", Value(option.usual));
    AddToObject(object, "file", Value(NameOf(option.file)));
    AddToObject(object, "required", Value(option.isRequired));
    AddToObject(object, "several", Value(option.takesSeveral));
    return Value(std::move(object));
}

Value GroupAsJson(const OptionGroup& group)
{
    Object object;
    AddToObject(object, "name", Value(group.name));
    AddToObject(object, "options", ArrayOf(group.options, OptionAsJson));
    return Value(std::move(object));
}

Value ExampleAsJson(const Example& example)
{
    Object object;
    AddToObject(object, "command", Value(example.command));
    AddToObject(object, "text", Value(example.text));
    return Value(std::move(object));
}

Value TopicAsJson(const TopicText& topic)
{
    Object object;
    AddToObject(object, "name", Value(topic.name));
    AddToObject(object, "summary", Value(topic.summary));
    AddToObject(object, "text", Value(topic.text));
    return Value(std::move(object));
}

Value CommandAsJson(const ProgramText& program, const CommandText& command)
{
    Object object;
    AddToObject(object, "name", Value(command.name));
    AddToObject(object, "summary", Value(command.summary));
    AddToObject(object, "description", Value(command.description));
    AddToObject(object, "usage", Value(UsageOf(program, command)));
    AddToObject(object, "groups", ArrayOf(command.groups, GroupAsJson));
    AddToObject(object, "positionals", ArrayOf(command.positionals, OptionAsJson));
    AddToObject(object, "examples", ArrayOf(command.examples, ExampleAsJson));
    return Value(std::move(object));
}

} // namespace

std::string HelpAsJson(const ProgramText& program)
{
    Object object;
    AddToObject(object, "name", Value(program.name));
    AddToObject(object, "summary", Value(program.summary));
    AddToObject(object, "version", Value(program.version));
    AddToObject(object, "groups", ArrayOf(program.shared.groups, GroupAsJson));
    AddToObject(object, "examples", ArrayOf(program.shared.examples, ExampleAsJson));
    AddToObject(object, "topics", ArrayOf(program.topics, TopicAsJson));
    AddToObject(object, "commands", ArrayOf(program.commands, [&program](const CommandText& command) {
                    return CommandAsJson(program, command);
                }));
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(object)), /*formatted=*/true) + "\n";
}

} // namespace tessel::cli
