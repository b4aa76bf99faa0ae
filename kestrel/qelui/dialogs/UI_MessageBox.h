/// A question with a few answers. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/TopLevelWindow.h>

#include <string>

namespace qelui::dialogs {

/// Button set "Yes" and "No".
inline constexpr int kButtonsYesNo = 80;
/// Answers, and values for the default button.
inline constexpr int kButtonYes = 16;
inline constexpr int kButtonNo = 64;
inline constexpr int kIconWarning = 1;

class KESTRELUI_API UI_MessageBox {
public:
    UI_MessageBox(TopLevelWindow* parent, std::string title, std::string text, int buttonSet, int defaultButton,
                  int icon);

    /// Shows the box until it is answered; closing its window answers "No". @throws NoToolkitError
    void RunModal();
    /// `kButtonYes` or `kButtonNo`; "No" before `RunModal`.
    [[nodiscard]] int GetResponse() const noexcept { return mResponse; }

private:
    TopLevelWindow* mParent; // borrowed
    std::string mTitle;
    std::string mText;
    int mButtonSet;
    int mDefaultButton;
    int mIcon;
    int mResponse = kButtonNo;
};

} // namespace qelui::dialogs
