#include "ScriptedToolkit.h"

#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/dialogs/UI_MessageBox.h>
#include <kestrel/qelui/script/ScriptRunner.h>

namespace qelui::script {

std::string ModelDriver::SeeStatus()
{
    return mDialog.Status().Text();
}

void ModelDriver::Press(UI_Button& button)
{
    mDialog.Status().Explain(button);
    button.Press();
}

void ModelDriver::Press(UI_RadioButton& button)
{
    mDialog.Status().Explain(button);
    button.Press();
}

void ModelDriver::Check(UI_CheckBox& box, bool checked)
{
    mDialog.Status().Explain(box);
    box.EnterChecked(checked);
}

void ModelDriver::Choose(UI_Popup& popup, int index)
{
    mDialog.Status().Explain(popup);
    popup.Choose(index);
}

void ModelDriver::Type(UI_NumberView& number, std::string_view text)
{
    mDialog.Status().Explain(number);
    number.EnterText(text);
}

bool ModelDriver::SaveScreenshot(const std::filesystem::path& /*file*/, std::string& whyNot)
{
    whyNot = "there is no window to take a picture of; use the Qt toolkit (KESTREL_UI=qt)";
    return false;
}

void ScriptedToolkit::RunModal(UI_Dialog& dialog)
{
    if (ScriptRunner* const script = dialog.Script()) {
        ModelDriver driver(dialog);
        dialog.Status().ExplainFirst();
        script->Play(driver);
    }
}

std::optional<std::u16string> ScriptedToolkit::RunFileDialog(const FileDialogRequest& request)
{
    return request.script == nullptr ? std::nullopt : request.script->TakeFileAnswer();
}

int ScriptedToolkit::RunMessageBox(const MessageBoxRequest& request)
{
    const bool yes = request.script != nullptr && request.script->TakeBoxAnswer();
    return yes ? dialogs::kButtonYes : dialogs::kButtonNo;
}

std::optional<sharedui::PickerColor> ScriptedToolkit::RunColorPicker(const ColorPickerRequest& request)
{
    return request.script == nullptr ? std::nullopt : request.script->TakeColorAnswer();
}

} // namespace qelui::script
