/// What importer and settings dialog share: the settings on their way in and out, and how the dialog ended.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/qelcore/classref/ClassWatcher.h>
#include <kestrel/qelcore/classref/UnknownBase.h>

#include <memory>
#include <string>
#include <string_view>

namespace ImporterTessel {

/// Found by asking an object for it by name. The order of the virtual functions is part of the contract.
/// [ui-thread]
class IImporterTesselPrefsDialogDataExchange : public qelcore::classref::UnknownBase {
public:
    static constexpr std::string_view kTypeName = "IImporterTesselPrefsDialogDataExchange";

    /// Holds a copy of `prefs` and clears the cancelled flag.
    virtual void SetPrefs(const TesselInfo& prefs) = 0;
    /// Copies the held settings.
    virtual void GetPrefs(TesselInfo& prefs) const = 0;
    /// Sets the cancelled flag.
    virtual void Cancel() = 0;
    /// Whether the clip is to use the file that the settings were saved to.
    virtual void SetUseFileAsCustomImporter(bool use) = 0;
    /// The data file's text for the held settings, UTF-8.
    [[nodiscard]] virtual std::string GetDataFileText() const = 0;
    [[nodiscard]] virtual std::shared_ptr<qelcore::classref::UnknownBase> GetSharedFromThis();
};

/// Outlives the dialog; read by the importer after it.
class ImporterTesselPrefsDialogDataExchange final : public IImporterTesselPrefsDialogDataExchange {
public:
    static constexpr std::string_view kTypeName = "ImporterTessel::ImporterTesselPrefsDialogDataExchange";

    ImporterTesselPrefsDialogDataExchange();

    /// Answers to the names of the interface and of this class.
    [[nodiscard]] void* QueryInterface(std::string_view typeName) noexcept override;

    void SetPrefs(const TesselInfo& prefs) override;
    void GetPrefs(TesselInfo& prefs) const override;
    void Cancel() override;
    void SetUseFileAsCustomImporter(bool use) override;
    [[nodiscard]] std::string GetDataFileText() const override;

    [[nodiscard]] bool IsCancelled() const noexcept { return mCancelled; }
    [[nodiscard]] bool UsesFileAsCustomImporter() const noexcept { return mUseFile; }

private:
    TesselInfo mPrefs;
    bool mCancelled = false;
    bool mUseFile = false;
    qelcore::classref::WatchedClass mWatched{kTypeName};
};

} // namespace ImporterTessel
