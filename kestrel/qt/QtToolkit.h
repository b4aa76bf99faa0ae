/// Dialogs as real windows.
#pragma once

#include <kestrel/qelui/toolkit/Toolkit.h>

#include <memory>

class QApplication;

namespace kestrelqt {

/// Makes the process's `QApplication` unless the process already has one. One object. [ui-thread]
class QtToolkit final : public qelui::Toolkit {
public:
    QtToolkit();
    QtToolkit(const QtToolkit&) = delete;
    QtToolkit& operator=(const QtToolkit&) = delete;
    ~QtToolkit() override;

    void RunModal(qelui::UI_Dialog& dialog) override;
    [[nodiscard]] std::optional<std::u16string> RunFileDialog(const qelui::FileDialogRequest& request) override;
    [[nodiscard]] int RunMessageBox(const qelui::MessageBoxRequest& request) override;
    [[nodiscard]] std::optional<qelui::sharedui::PickerColor>
    RunColorPicker(const qelui::ColorPickerRequest& request) override;

private:
    std::unique_ptr<QApplication> mApplication;
};

} // namespace kestrelqt
