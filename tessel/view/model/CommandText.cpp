#include "CommandText.h"

namespace tessel::view {

std::string ShellWord(std::string_view text)
{
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+,:@%=";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos) {
        return std::string(text);
    }
    std::string word = "'";
    for (const char letter : text) {
        word += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return word + "'";
}

std::string ViewCommand(const std::vector<std::string>& clips, std::string_view against, std::int64_t frame,
                        std::string_view plugin)
{
    std::string command = "tessel view";
    for (const std::string& clip : clips) {
        // A name that looks like an option is a file all the same.
        command += ' ' + ShellWord(clip.starts_with('-') ? "./" + clip : clip);
    }
    if (!against.empty()) {
        command += " --against " + ShellWord(against);
    }
    command += " --frame " + std::to_string(frame);
    if (!plugin.empty()) {
        command += " --plugin " + ShellWord(plugin);
    }
    return command;
}

} // namespace tessel::view
