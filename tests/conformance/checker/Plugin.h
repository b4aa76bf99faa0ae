/// The plug-in under test, reached through its two exports and the sections of its file alone.
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
    /// @throws std::runtime_error where the library or one of its entries is missing.
    explicit Plugin(std::filesystem::path file);

    [[nodiscard]] std::int32_t Request(std::int32_t selector, const ksStdParms* stdParms, void* param1,
                                       void* param2) const
    {
        return mEntry(selector, stdParms, param1, param2);
    }
    [[nodiscard]] ksPluginDataEntry DataEntry() const noexcept { return mDataEntry; }

    /// The bytes of a section of the library's file, read without the loaded library.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> Section(const std::string& name) const;

private:
    std::filesystem::path mFile;
    ksImportEntry mEntry = nullptr;
    ksPluginDataEntry mDataEntry = nullptr;
};

} // namespace conformance
