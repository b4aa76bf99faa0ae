/// Plug-ins that are wrong in one way each, to prove that the checks can fail. All of them are one library: it
/// stands in front of the right plug-in, and the variable WRONG_PLUGIN names the row of the tables below that
/// serves the requests.
#pragma once

#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace wrong {

struct Request {
    std::int32_t selector;
    const ksStdParms* stdParms;
    void* param1;
    void* param2;

    /// The record in param1, or in param2; null where there is none. @{
    template <class Record>
    [[nodiscard]] Record* First() const
    {
        return static_cast<Record*>(param1);
    }
    template <class Record>
    [[nodiscard]] Record* Second() const
    {
        return static_cast<Record*>(param2);
    }
    /// @}

    /// Whether it is this request, with a second record.
    [[nodiscard]] bool Is(std::int32_t number) const { return selector == number && param2 != nullptr; }
};

/// What the right plug-in answers.
std::int32_t Right(const Request& request);

struct WrongPlugin {
    const char* name; ///< says what it does wrong
    std::function<std::int32_t(const Request&)> serve;
};

/// The tables, by what is wrong.
std::vector<WrongPlugin> WrongAnswers();   ///< answers, and requests that are refused, served or crash
std::vector<WrongPlugin> WrongInstances(); ///< opening, describing, deleting
std::vector<WrongPlugin> WrongTexts();     ///< documents and settings texts
std::vector<WrongPlugin> WrongFrames();    ///< what is asked of the host, and pixels
std::vector<WrongPlugin> WrongSound();     ///< samples

/// The bytes of a file that a request names; nothing where it is no file that can be read.
std::optional<std::string> ContentOf(const ksUTF16* path);

/// Ends the process as an access through a null pointer does.
[[noreturn]] void Crash();

/// The ways to be wrong that several rows share. @{
using Serve = std::function<std::int32_t(const Request&)>;

/// Where the right answer to `selector` is `right`, the answer is `wrong`.
Serve AnswersInstead(std::int32_t selector, std::int32_t right, std::int32_t wrong);

/// Reads documents, in files and settings texts, as if they held what `spoil` makes of them.
Serve Reads(const std::function<std::string(std::string)>& spoil);

/// The same, with every `from` read as `to`.
Serve ReadsAs(const std::string& from, const std::string& to);

/// Gives the host what `spoil` makes of a settings text.
Serve GivesText(const std::function<std::string(std::string)>& spoil);

/// Fails where it serves `selector` twice at the same time: `spoil` is called after the right answer.
Serve SpoilsConcurrent(std::int32_t selector, const std::function<std::int32_t(const Request&)>& spoil);

/// Takes some memory for `selector`, and answers 5 where there is none.
Serve MisreportsShortMemory(std::int32_t selector);
/// @}

} // namespace wrong
