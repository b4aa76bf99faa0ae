#include "Assert.h"

#include <kestrel/qelcore/logging/Log.h>

#include <cstdlib>
#include <exception>
#include <string>

namespace qelcore::debug {

bool DoSimpleAssert(std::string_view file, int line, std::string_view function, std::string_view condition,
                    std::string_view message) noexcept
{
    try {
        std::string text(message);
        text.append(" [assertion \"").append(condition).append("\", ").append(file).append(", line ");
        text.append(std::to_string(line)).append("]");
        logging::Log(function, text);
    } catch (const std::exception&) {
        logging::Log(function, message); // No memory for the whole story.
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing here changes the environment.
    const char* const breaks = std::getenv("KESTREL_BREAK_ON_ASSERT");
    return breaks != nullptr && std::string_view(breaks) == "true";
}

} // namespace qelcore::debug
