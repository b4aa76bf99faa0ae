/// The toolkit without windows: a script acts on the models directly.
#pragma once

#include <kestrel/qelui/script/ControlDriver.h>
#include <kestrel/qelui/toolkit/Toolkit.h>

namespace qelui::script {

/// Calls the models' own functions. The control used last has the focus.
class ModelDriver final : public ControlDriver {
public:
    /// `dialog` outlives the driver.
    explicit ModelDriver(UI_Dialog& dialog) : mDialog(dialog) {}

    [[nodiscard]] SeenState See(UI_ControlView& control) override { return SeeModel(control); }
    [[nodiscard]] std::string SeeStatus() override;
    void Press(UI_Button& button) override;
    void Press(UI_RadioButton& button) override;
    void Check(UI_CheckBox& box, bool checked) override;
    void Choose(UI_Popup& popup, int index) override;
    void Type(UI_NumberView& number, std::string_view text) override;
    [[nodiscard]] bool SaveScreenshot(const std::filesystem::path& file, std::string& whyNot) override;

private:
    UI_Dialog& mDialog;
};

/// A dialog without a script, and every nested dialog of it, is cancelled at once.
class ScriptedToolkit final : public Toolkit {
public:
    void RunModal(UI_Dialog& dialog) override;
    [[nodiscard]] std::optional<std::u16string> RunFileDialog(const FileDialogRequest& request) override;
    [[nodiscard]] int RunMessageBox(const MessageBoxRequest& request) override;
    [[nodiscard]] std::optional<sharedui::PickerColor>
    RunColorPicker(const ColorPickerRequest& request) override;
};

} // namespace qelui::script
