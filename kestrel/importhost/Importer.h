/// A loaded importer plug-in.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/importabi/Records.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace importhost {

/// The facts in a plug-in's property list, read from its file without running it.
struct PluginIdentity {
    std::string nameKey;     ///< localisation key with its default text after "="
    std::string displayName; ///< that default text
    std::string matchName;
    std::string kind; ///< "Importer"
    std::uint32_t kindCode = 0;
};

struct FileType {
    std::uint32_t code = 0;
    std::string displayName;
    std::vector<std::string> extensions;
};

/// Whether test plug-ins may start although the debug database does not allow it.
enum class TestingPlugins { Allowed, AsDebugDatabaseSays };

/// One importer library, loaded and started. Unloads when the last owner lets go; clips own it.
/// Threads: [thread-safe]. Loading, unloading and the first frame request, which change what a plug-in has for
/// the whole process, are serialised inside.
class KESTRELHOST_API Importer {
public:
    /// Reads the plug-in's resources from its file, loads it, checks that property list and identity
    /// callback agree, and starts it up.
    /// @throws HostError  not a library, resources missing or contradictory, entries missing, or the
    ///                    plug-in refused to start (for a test plug-in: the debug key is not "true").
    [[nodiscard]] static std::shared_ptr<Importer> Load(const std::filesystem::path& pluginFile,
                                                        TestingPlugins testingPlugins);

    ~Importer();
    Importer(const Importer&) = delete;
    Importer& operator=(const Importer&) = delete;

    [[nodiscard]] const PluginIdentity& Identity() const noexcept;
    /// The file types that the plug-in described (selector 14), in its order.
    [[nodiscard]] const std::vector<FileType>& FileTypes() const noexcept;
    [[nodiscard]] const std::filesystem::path& File() const noexcept;

    /// Sends one request with this host's standard parameters. The first frame request runs alone.
    /// @return the plug-in's answer.
    [[nodiscard]] std::int32_t Request(std::int32_t selector, void* param1, void* param2) const noexcept;

private:
    struct State;
    explicit Importer(std::unique_ptr<State> state);
    void LoadLibrary();
    void StartUp(TestingPlugins testingPlugins);
    void AskFileTypes();

    std::unique_ptr<State> mState;
};

/// Where a program looks for its plug-in.
struct PluginSearch {
    std::filesystem::path place{}; ///< the plug-in's file or folder; empty: none is named
    std::string placeSaidBy{};     ///< what names it, for messages: an option, a setting
    std::string stem{};            ///< the plug-in's file name without its ending
};

/// Finds a plug-in: at `place` where there is one, else where the variable `KESTREL_PLUGIN_PATH` says, else
/// beside this host's own library or in the folder `kestrel` there. A folder stands for the library `stem` in
/// it, or, at the two places that a person names, for the one importer in it: its libraries are told apart by
/// their resources, without running anything.
/// @throws HostError  none there, or several; names the places looked at and what to say instead.
[[nodiscard]] KESTRELHOST_API std::filesystem::path FindPlugin(const PluginSearch& search);

} // namespace importhost
