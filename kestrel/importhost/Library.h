/// Shared libraries as the platform has them.
#pragma once

#include <filesystem>

namespace importhost {

/// A loaded library; unloads when it goes.
class Library {
public:
    /// @throws HostError with the loader's own reason in one line.
    explicit Library(const std::filesystem::path& file);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// The exported function `name`, or null. The caller knows its type.
    template <class Function>
    [[nodiscard]] Function Find(const char* name) const noexcept
    {
        return reinterpret_cast<Function>(FindSymbol(name));
    }

private:
    [[nodiscard]] void* FindSymbol(const char* name) const noexcept;

    void* mHandle = nullptr;
};

/// The file name of a plug-in called `stem` here: "Stem.so".
[[nodiscard]] std::filesystem::path LibraryFileName(const char* stem);

/// The folder of the library that holds this host, or the program's where it is linked in.
/// Empty where the platform cannot say.
[[nodiscard]] std::filesystem::path HostLibraryFolder();

} // namespace importhost
