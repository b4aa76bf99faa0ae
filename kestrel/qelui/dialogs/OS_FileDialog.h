/// The platform's dialogs for choosing a file. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/files/File.h>
#include <kestrel/qelui/TopLevelWindow.h>

#include <string>
#include <vector>

namespace qelui::dialogs {

struct FileFilter {
    std::string description; ///< "Text Files"
    std::string extension;   ///< without the point
};

/// Answers of modal dialogs.
inline constexpr int kResponseCancelled = 0;
inline constexpr int kResponseConfirmed = 1;

/// What both file dialogs share. Life: built, run once, read.
class KESTRELUI_API OS_FileDialog {
public:
    virtual ~OS_FileDialog();
    OS_FileDialog(const OS_FileDialog&) = delete;
    OS_FileDialog& operator=(const OS_FileDialog&) = delete;

    void AddFilter(FileFilter filter) { mFilters.push_back(std::move(filter)); }

    /// @return `kResponseConfirmed` or `kResponseCancelled`. @throws NoToolkitError
    int RunModal();
    /// The chosen file; one with an empty path before `RunModal` and after a cancel.
    [[nodiscard]] const qelcore::filesupport::File& GetFile() const noexcept { return mFile; }

protected:
    enum class Purpose { Open, SaveAs };
    OS_FileDialog(Purpose purpose, TopLevelWindow* parent) : mPurpose(purpose), mParent(parent) {}
    std::u16string mProposedName;

private:
    /// Says what is opened or saved, in the words of the first filter: "Open Swatch Colors File".
    [[nodiscard]] std::string Title() const;

    Purpose mPurpose;
    TopLevelWindow* mParent; // borrowed
    std::vector<FileFilter> mFilters;
    qelcore::filesupport::File mFile;
};

/// For a file that exists.
class KESTRELUI_API OS_FileOpenDialog final : public OS_FileDialog {
public:
    explicit OS_FileOpenDialog(TopLevelWindow* parent) : OS_FileDialog(Purpose::Open, parent) {}
};

/// For a file to write, whose replacing the platform's dialog has asked about where it exists.
class KESTRELUI_API OS_FileSaveAsDialog final : public OS_FileDialog {
public:
    explicit OS_FileSaveAsDialog(TopLevelWindow* parent) : OS_FileDialog(Purpose::SaveAs, parent) {}
    /// The name that the dialog starts with.
    void SetProposedName(std::u16string name) { mProposedName = std::move(name); }
};

} // namespace qelui::dialogs
