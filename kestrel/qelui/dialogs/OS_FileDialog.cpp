#include "OS_FileDialog.h"

#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/toolkit/Toolkit.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <optional>
#include <string>
#include <utility>

namespace qelui::dialogs {

OS_FileDialog::~OS_FileDialog() = default;

int OS_FileDialog::RunModal()
{
    FileDialogRequest request;
    request.saveAs = mPurpose == Purpose::SaveAs;
    request.filters = mFilters;
    request.proposedName = mProposedName;
    request.title = Title();
    request.folder = UserInterface::Get().FileFolder();
    request.parent = mParent;
    if (const auto* const dialog = dynamic_cast<UI_Dialog*>(mParent)) {
        request.script = dialog->Script();
    }
    std::optional<std::u16string> path = UserInterface::Get().GetToolkit().RunFileDialog(request);
    if (!path) {
        return kResponseCancelled;
    }
    mFile = qelcore::filesupport::File(std::move(*path));
    return kResponseConfirmed;
}

std::string OS_FileDialog::Title() const
{
    const std::string what = mFilters.empty() ? "File" : mFilters.front().description;
    return mPurpose == Purpose::SaveAs ? "Save " + what + " As" : "Open " + what;
}

} // namespace qelui::dialogs
