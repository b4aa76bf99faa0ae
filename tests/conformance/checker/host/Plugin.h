/// The plug-in under test, reached through its two exports and the sections of its file alone, and what the
/// checker was told about it.
#pragma once

#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/Records.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace conformance {

/// Loads the library in the constructor and never unloads it: a check's process ends soon.
class Plugin {
public:
    /// @param seed  For the checks that choose times, positions or damages at random.
    /// @throws std::runtime_error where the library or one of its entries is missing.
    Plugin(std::filesystem::path file, std::uint64_t seed);

    [[nodiscard]] std::int32_t Request(std::int32_t selector, const ksStdParms* stdParms, void* param1,
                                       void* param2) const
    {
        return mEntry(selector, stdParms, param1, param2);
    }
    [[nodiscard]] ksPluginDataEntry DataEntry() const noexcept { return mDataEntry; }

    /// The bytes of a section of the library's file, read without the loaded library.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> Section(const std::string& name) const;

    /// The first extension of the first file type that selector 14 describes; empty where there is none.
    [[nodiscard]] std::string FirstExtension() const;

    /// A document of this importer. @throws Skipped where the checker has none.
    [[nodiscard]] const std::filesystem::path& Document() const;
    void SetDocument(std::filesystem::path document) { mDocument = std::move(document); }

    [[nodiscard]] std::uint64_t Seed() const noexcept { return mSeed; }

private:
    std::filesystem::path mFile;
    std::filesystem::path mDocument;
    std::uint64_t mSeed;
    ksImportEntry mEntry = nullptr;
    ksPluginDataEntry mDataEntry = nullptr;
};

} // namespace conformance
