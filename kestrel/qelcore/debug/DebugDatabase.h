/// The host's debug settings: texts by key, kept in a JSON file that testers edit by hand.
#pragma once

#include <string>
#include <string_view>

namespace qelcore::debug {

/// One object for the process. The file is the one named by the environment variable
/// `KESTREL_DEBUG_DATABASE`, else `kestrel/debug-database.json` in the user's configuration folder. It is
/// read at each question, so an edit counts at once; questions are asked at start-up only.
///
/// Threads: [thread-safe].
class DebugDatabase {
public:
    [[nodiscard]] static DebugDatabase& Instance();

    /// The text stored for `key`; `defaultText` where there is none. A missing or broken file is an empty
    /// database (a broken one is logged); a value that is not a text counts as absent. An override set in
    /// this process wins over the file.
    [[nodiscard]] std::string GetEntry(std::string_view key, std::string_view defaultText) const;

    /// Answers `key` with `text` for the rest of the process, whatever the file says.
    void SetOverride(std::string_view key, std::string_view text);

    /// Ends what `SetOverride` began; no effect on a key without override.
    void ClearOverride(std::string_view key);

    ~DebugDatabase() = default;
    DebugDatabase(const DebugDatabase&) = delete;
    DebugDatabase& operator=(const DebugDatabase&) = delete;

private:
    DebugDatabase() = default;
};

} // namespace qelcore::debug
