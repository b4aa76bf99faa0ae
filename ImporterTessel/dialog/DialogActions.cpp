/// Actions that open another dialog or a file: picking colours, choosing swatch files, saving.
#include "ImporterTesselPrefsDialogImpl.h"

#include <ImporterTessel/settings/DocumentText.h>
#include <ImporterTessel/settings/SwatchFiles.h>
#include <kestrel/qelcore/files/FileUtils.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/Unicode.h>
#include <kestrel/qelui/dialogs/ColorPickerDialog.h>
#include <kestrel/qelui/dialogs/OS_FileDialog.h>
#include <kestrel/qelui/dialogs/UI_MessageBox.h>

#include <exception>
#include <new>
#include <optional>
#include <span>
#include <utility>

namespace ImporterTessel {

namespace {

using qelcore::utility::FileUtils;

/// Paths are long: both ends of them should stay readable.
void ShowPath(qelui::UI_StaticText& text, const std::u16string& path)
{
    text.SetValue(qelcore::text::ToUTF8(path));
    text.SetDisplayOption(qelui::DisplayOption::ElideMiddle);
}

/// Asks for a file of the one kind. @return nothing where the person cancelled.
std::optional<std::u16string> AskForFile(qelui::TopLevelWindow& parent, std::string description)
{
    qelui::dialogs::OS_FileOpenDialog dialog(&parent);
    dialog.AddFilter({std::move(description), "json"});
    if (dialog.RunModal() != qelui::dialogs::kResponseConfirmed) {
        return std::nullopt;
    }
    return dialog.GetFile().FullPath();
}

/// Why a file could not be opened or read.
std::string_view ReasonOf(ORB::Status status) noexcept
{
    switch (status) {
    case ORB::kNotFound:
        return "no such file";
    case ORB::kAccessDenied:
        return "is a directory or may not be read, a JSON file was expected";
    case ORB::kInvalidPath:
        return "is no path, a JSON file was expected";
    default:
        return "cannot be read: the medium failed";
    }
}

/// Reads the file into `data`, all or nothing. @return what went wrong; nothing where it worked.
template <class Data>
std::optional<std::string> ReadSwatches(const std::u16string& path,
                                        ORB::Status (*read)(std::u16string_view, Data&), Data& data)
{
    try {
        const ORB::Status status = FileUtils::FileOrDirExists(path) ? read(path, data) : ORB::kNotFound;
        return status < 0 ? std::optional(std::string(ReasonOf(status))) : std::nullopt;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const malformed_document& error) {
        return error.Explanation();
    } catch (const std::exception& error) {
        return error.what();
    }
}

/// Reads the file into `data` and, only if that worked, notes it in `recordPath`; else the log says why.
template <class Data>
void LoadSwatchFile(const std::u16string& path, ORB::Status (*read)(std::u16string_view, Data&), Data& data,
                    std::u16string& recordPath)
{
    if (const std::optional<std::string> reason = ReadSwatches(path, read, data)) {
        qelcore::logging::Log("ImporterTessel::ImporterTesselPrefsDialogImpl",
                              qelcore::text::ToUTF8(path) + ": " + *reason);
    } else {
        recordPath = path;
    }
}

} // namespace

FloatColor* ImporterTesselPrefsDialogImpl::PickedColor(std::size_t column)
{
    const bool isFirst = column == 0;
    if (mPrefs.mRenderFormat == kRenderFieldColors) {
        // Intended: whatever the slot, because field colours are all that this render type has.
        return isFirst ? &mPrefs.mUpperFieldColor : &mPrefs.mLowerFieldColor;
    }
    const int slot = mControls.colorSlot->GetValue();
    const bool isGradientSlot = slot == 1 || slot == 2;
    return mPrefs.mRenderFormat == kRenderHorizontalGradient && isGradientSlot ? ShownColor(column) : nullptr;
}

void ImporterTesselPrefsDialogImpl::OnColorButton(std::size_t column)
{
    if (FloatColor* const color = PickedColor(column)) {
        FloatColor picked = *color;
        PickColor(picked);
        // Intended: alpha stays, whatever the picker returned; it is edited in its own field only.
        color->mRedPart = picked.mRedPart;
        color->mGreenPart = picked.mGreenPart;
        color->mBluePart = picked.mBluePart;
    }
    UpdateColorEdits();
}

void ImporterTesselPrefsDialogImpl::PickColor(FloatColor& color)
{
    qelui::sharedui::ColorPickerDialog picker(GetDrawSupplier(), &GetDialog(), /*offersAlpha=*/false);
    picker.SetColor({color.mRedPart, color.mGreenPart, color.mBluePart, color.mAlphaPart});
    if (picker.RunModal()) {
        const qelui::sharedui::PickerColor& picked = picker.GetColor();
        color = {picked.alpha, picked.red, picked.green, picked.blue};
    }
}

void ImporterTesselPrefsDialogImpl::ChooseSwatchCoordinatesFile()
{
    if (const auto path = AskForFile(GetDialog(), "Swatch Coordinates File")) {
        // Intended: the path is shown before the file is read. If reading fails, the dialog shows the new path
        // and the settings keep the old one.
        ShowPath(*mControls.swatchCoordinatesPath, *path);
        LoadSwatchFile(*path, ReadSwatchCoordinatesFile, mPrefs.mSwatchCoordinates,
                       mPrefs.mSwatchCoordinatesFilePath);
    }
}

void ImporterTesselPrefsDialogImpl::ChooseSwatchColorsFile()
{
    if (const auto path = AskForFile(GetDialog(), "Swatch Colors File")) {
        // Intended: as for the coordinates.
        ShowPath(*mControls.swatchColorsPath, *path);
        LoadSwatchFile(*path, ReadSwatchColorsFile, mPrefs.mSwatchColors, mPrefs.mSwatchColorsFilePath);
    }
}

ORB::Status ImporterTesselPrefsDialogImpl::WriteDataFile(const std::u16string& path)
{
    // Intended: noted before anything can fail, so OK and "Save File" try a failed path again.
    mPrefs.mSavePath = path;
    mExchange->SetPrefs(mPrefs);
    const std::string text = mExchange->GetDataFileText();
    ORB::File file;
    if (const ORB::Status created = ORB::File::Create(path, 3, 3, 2, 1, 0, file); created < 0) {
        return created;
    }
    const ORB::Status written = file.Write(std::span<const char>(text));
    // Intended: after the text was made, so the exchange still holds the former name.
    mPrefs.mClipName = ORB::PathUtils::GetFilePart(path);
    file.Close();
    return written;
}

ORB::Status ImporterTesselPrefsDialogImpl::RunSaveAsDialog()
{
    qelui::dialogs::OS_FileSaveAsDialog dialog(&GetDialog());
    dialog.AddFilter({"Tessel Data", "tessel"});
    dialog.SetProposedName(mPrefs.mClipName);
    if (dialog.RunModal() != qelui::dialogs::kResponseConfirmed) {
        return ORB::kDone;
    }
    const std::u16string path = dialog.GetFile().FullPath();
    const ORB::Status result = WriteDataFile(path);
    if (result >= 0) {
        ShowPath(*mControls.savePath, path);
        mPrefs.mSavePath = path;
    }
    return result;
}

void ImporterTesselPrefsDialogImpl::ChooseSaveToPath()
{
    ORB::Status result = RunSaveAsDialog();
    while (result < 0) {
        qelui::dialogs::UI_MessageBox box(
            &GetDialog(), "Error saving file", "There was a problem saving the file. Choose another path?",
            qelui::dialogs::kButtonsYesNo, qelui::dialogs::kButtonYes, qelui::dialogs::kIconWarning);
        box.RunModal();
        if (box.GetResponse() != qelui::dialogs::kButtonYes) {
            return;
        }
        result = RunSaveAsDialog();
    }
    if (!mPrefs.mSavePath.empty() && FileUtils::FileOrDirExists(mPrefs.mSavePath)) {
        mControls.saveFile->SetDisabled(false);
    }
}

void ImporterTesselPrefsDialogImpl::OnSaveFile()
{
    if (mPrefs.mSavePath.empty()) {
        ChooseSaveToPath();
    }
    if (!mPrefs.mSavePath.empty()) {
        // Intended: this button reports no failure.
        WriteDataFile(mPrefs.mSavePath);
    }
}

void ImporterTesselPrefsDialogImpl::OnUseAsCustomImporter()
{
    if (!mControls.useAsCustomImporter->IsChecked()) {
        mExchange->SetUseFileAsCustomImporter(false);
        return;
    }
    if (mPrefs.mSavePath.empty()) {
        ChooseSaveToPath();
    }
    if (mPrefs.mSavePath.empty()) {
        mControls.useAsCustomImporter->SetChecked(false);
        mExchange->SetUseFileAsCustomImporter(false);
        return;
    }
    // Intended: as with OK, the file counts as chosen whether or not it could be written.
    WriteDataFile(mPrefs.mSavePath);
    mExchange->SetUseFileAsCustomImporter(true);
}

} // namespace ImporterTessel
