/// What the checker was asked to do.
#pragma once

#include "../Check.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace conformance {

enum class Format { Text, Json };

struct Options {
    std::filesystem::path plugin;
    std::filesystem::path document; ///< of the importer under test; empty: none was named
    std::optional<Suite> suite;     ///< run this one only, whatever files the importer opens
    std::vector<std::string> only;  ///< ids, or beginnings of ids up to a dot; empty: all
    std::vector<std::string> expectFailing;
    std::vector<std::string> expectSkipped;
    std::chrono::seconds timeLimit{60};
    std::uint64_t seed = 1;
    Format format = Format::Text;
    std::filesystem::path junitFile; ///< empty: none
    bool verbose = false;
    bool list = false;
    bool help = false;
    bool version = false;
    std::string runHere; ///< id of the check that this process runs for the one that started it
};

extern const char* const kUsage;

/// @throws std::invalid_argument with one line for the user.
[[nodiscard]] Options ParseCommandLine(const std::vector<std::string>& arguments);

/// Whether `check` is among those chosen.
[[nodiscard]] bool IsChosen(const Options& options, const Check& check);

/// @throws std::invalid_argument where an option names a check or a subject that there is not.
void RequireKnownIds(const Options& options, const std::vector<Check>& checks);

} // namespace conformance
