#include "UI_MessageBox.h"

#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/toolkit/Toolkit.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <utility>

namespace qelui::dialogs {

UI_MessageBox::UI_MessageBox(TopLevelWindow* parent, std::string title, std::string text, int buttonSet,
                             int defaultButton, int icon)
    : mParent(parent), mTitle(std::move(title)), mText(std::move(text)), mButtonSet(buttonSet),
      mDefaultButton(defaultButton), mIcon(icon)
{
}

void UI_MessageBox::RunModal()
{
    MessageBoxRequest request;
    request.title = mTitle;
    request.text = mText;
    request.buttonSet = mButtonSet;
    request.defaultButton = mDefaultButton;
    request.icon = mIcon;
    request.parent = mParent;
    if (const auto* const dialog = dynamic_cast<UI_Dialog*>(mParent)) {
        request.script = dialog->Script();
    }
    mResponse = UserInterface::Get().GetToolkit().RunMessageBox(request);
}

} // namespace qelui::dialogs
