#include "Assert.h"

#include <kestrel/qelcore/logging/Log.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <string>

namespace qelcore::debug {
namespace {

/// The category that a message begins with: words of letters and digits with points between them, alone or in
/// angle brackets, before a space. Empty if the message names no category.
std::string_view CategoryOf(std::string_view message) noexcept
{
    std::string_view word = message.substr(0, message.find(' '));
    if (word.size() == message.size()) {
        return {}; // no text follows
    }
    if (word.starts_with('<') && word.ends_with('>')) {
        word = word.substr(1, word.size() - 2);
    }
    const bool hasPoint = word.find('.') != std::string_view::npos;
    const bool isPlain = std::all_of(word.begin(), word.end(), [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
               (letter >= '0' && letter <= '9') || letter == '.';
    });
    return hasPoint && isPlain && word.front() != '.' && word.back() != '.' ? word : std::string_view();
}

} // namespace

bool DoSimpleAssert(std::string_view file, int line, std::string_view function, std::string_view condition,
                    std::string_view message) noexcept
{
    const std::string_view category = CategoryOf(message);
    const std::string_view context = category.empty() ? function : category;
    try {
        std::string text(message);
        text.append(" [assertion \"").append(condition).append("\", ").append(file).append(", line ");
        text.append(std::to_string(line)).append("]");
        logging::Log(context, text);
    } catch (const std::exception&) {
        logging::Log(context, message); // No memory for the whole story.
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing here changes the environment.
    const char* const breaks = std::getenv("KESTREL_BREAK_ON_ASSERT");
    return breaks != nullptr && std::string_view(breaks) == "true";
}

} // namespace qelcore::debug
