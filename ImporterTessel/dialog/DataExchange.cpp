#include "DataExchange.h"

#include <ImporterTessel/settings/DataFile.h>

namespace ImporterTessel {

std::shared_ptr<qelcore::classref::UnknownBase> IImporterTesselPrefsDialogDataExchange::GetSharedFromThis()
{
    return UnknownBase::GetSharedFromThis();
}

ImporterTesselPrefsDialogDataExchange::ImporterTesselPrefsDialogDataExchange() = default;

void* ImporterTesselPrefsDialogDataExchange::QueryInterface(std::string_view typeName) noexcept
{
    // Each name gets the address of its own sub-object, which is what the asker casts to.
    if (typeName == IImporterTesselPrefsDialogDataExchange::kTypeName) {
        return static_cast<IImporterTesselPrefsDialogDataExchange*>(this);
    }
    if (typeName == kTypeName) {
        return this;
    }
    return nullptr;
}

void ImporterTesselPrefsDialogDataExchange::SetPrefs(const TesselInfo& prefs)
{
    mPrefs = prefs;
    mCancelled = false;
}

void ImporterTesselPrefsDialogDataExchange::GetPrefs(TesselInfo& prefs) const
{
    prefs = mPrefs;
}

void ImporterTesselPrefsDialogDataExchange::Cancel()
{
    mCancelled = true;
}

void ImporterTesselPrefsDialogDataExchange::SetUseFileAsCustomImporter(bool use)
{
    mUseFile = use;
}

std::string ImporterTesselPrefsDialogDataExchange::GetDataFileText() const
{
    return TesselToUTF8String(mPrefs);
}

} // namespace ImporterTessel
