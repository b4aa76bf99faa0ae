/// The program's help text as data: commands, options, values, examples, topics.
///
/// The commands fill it while they are declared. Help pages, `tessel help --dump-json` and near misses all read
/// it, so that no text is written twice. Plain data; deques, because declarations keep references to elements.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace tessel::cli {

/// What a value names in the file system, for those who complete it.
enum class FileKind : std::uint8_t {
    None,
    Any,  ///< a file
    Clip, ///< a document, or another importer's file
};

/// One option or argument.
struct OptionText {
    std::vector<std::string> names{};   ///< "-o", "--output"; of an argument its one name, "CLIP"
    std::string value{};                ///< what its value is called, "OUT"; empty for a flag and an argument
    std::string text{};                 ///< what it does, without a full stop
    std::vector<std::string> choices{}; ///< words that it takes; empty: no list says them
    std::string usual{};                ///< the value where it is not given; empty: none worth saying
    FileKind file = FileKind::None;
    bool isRequired = false;
    bool takesSeveral = false;
};

/// Options under one heading.
struct OptionGroup {
    std::string name;
    std::deque<OptionText> options;
};

/// A command line that does something useful as it stands, and what it does.
struct Example {
    std::string command;
    std::string text;
};

struct CommandText {
    std::string name;
    std::string summary;     ///< one line, without a full stop
    std::string description; ///< paragraphs, separated by newlines; may be empty
    std::deque<OptionText> positionals;
    std::deque<OptionGroup> groups;
    std::vector<Example> examples;
};

/// A page about a subject rather than a command.
struct TopicText {
    std::string name;
    std::string summary;
    std::string text; ///< paragraphs, separated by newlines; lines that begin with a blank stand as they are
};

struct ProgramText {
    std::string name;
    std::string summary;
    std::string version;
    CommandText shared; ///< its groups are the options of every command
    std::deque<CommandText> commands;
    std::deque<TopicText> topics;
};

/// "tessel render [OPTIONS] CLIP... -o OUT": optional arguments in brackets, required options by name.
[[nodiscard]] std::string UsageOf(const ProgramText& program, const CommandText& command);

} // namespace tessel::cli
