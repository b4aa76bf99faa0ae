/// The host's debug settings: texts by key, kept in a JSON file that testers edit by hand.
#pragma once

#include <kestrel/Export.h>

#include <string>
#include <string_view>

namespace qelcore::debug {

/// One object for the process. The file is the one named by the environment variable
/// `KESTREL_DEBUG_DATABASE`, else `kestrel/debug-database.json` in the user's configuration folder. It is
/// read at each question, so an edit counts at once; questions are asked at start-up only.
///
/// Threads: [thread-safe].
class KESTREL_API DebugDatabase {
public:
    [[nodiscard]] static DebugDatabase& Instance();

    /// The text stored for `key`; `defaultText` where there is none. A missing or broken file is an empty
    /// database (a broken one is logged); a value that is not a text counts as absent. A `ScopedOverride` of
    /// the calling thread wins over the file.
    [[nodiscard]] std::string GetEntry(std::string_view key, std::string_view defaultText) const;

    ~DebugDatabase() = default;
    DebugDatabase(const DebugDatabase&) = delete;
    DebugDatabase& operator=(const DebugDatabase&) = delete;

private:
    DebugDatabase() = default;
};

/// Answers `key` with `text` on its own thread, from construction to destruction, whatever the file says. Other
/// threads do not see it, so that two threads which load plug-ins do not answer each other's questions.
/// Overrides nest: the newest of a key wins. [any-thread]
class KESTREL_API ScopedOverride {
public:
    ScopedOverride(std::string_view key, std::string_view text);
    ~ScopedOverride();
    ScopedOverride(const ScopedOverride&) = delete;
    ScopedOverride& operator=(const ScopedOverride&) = delete;

private:
    friend class DebugDatabase;
    std::string mKey;
    std::string mText;
    ScopedOverride* mPrevious;
};

} // namespace qelcore::debug
