/// Lets a script act on real widgets.
#pragma once

#include <kestrel/qelui/script/ControlDriver.h>

namespace kestrelqt {

class DialogWindow;

/// Sends the events that a person's mouse and keyboard would send, and reads what widgets show. [ui-thread]
class QtDriver final : public qelui::script::ControlDriver {
public:
    /// `window` outlives the driver.
    explicit QtDriver(DialogWindow& window) : mWindow(window) {}

    [[nodiscard]] qelui::script::SeenState See(qelui::UI_ControlView& control) override;
    [[nodiscard]] std::string SeeStatus() override;
    void Press(qelui::UI_Button& button) override;
    void Press(qelui::UI_RadioButton& button) override;
    void Check(qelui::UI_CheckBox& box, bool checked) override;
    void Choose(qelui::UI_Popup& popup, int index) override;
    void Type(qelui::UI_NumberView& number, std::string_view text) override;
    [[nodiscard]] bool SaveScreenshot(const std::filesystem::path& file, std::string& whyNot) override;

private:
    DialogWindow& mWindow;
};

} // namespace kestrelqt
