/// The line at the foot of a dialog.
#pragma once

#include <kestrel/Export.h>

#include <string>

namespace qelui {

class UI_ControlView;
class UI_Dialog;

/// Two texts. The **explanation** is of the control with the focus: its tooltip, and what the program's adviser
/// has to say of it. The **report** says what came of the last act of a person: an entry that was changed or
/// refused, a file that was saved or could not be read. It stays until the next act, also while the focus moves
/// on. Part of a dialog. [ui-thread]
class KESTRELUI_API StatusLine {
public:
    explicit StatusLine(UI_Dialog& dialog) : mDialog(dialog) {}
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;
    ~StatusLine() = default;

    /// The control has the focus now, or its explanation may have changed.
    void Explain(const UI_ControlView& control);
    /// Explains the first control that a person can use, as a dialog begins.
    void ExplainFirst();
    /// An empty text removes the report.
    void Report(std::string text);
    /// Reports what became of an entry: "Frame Width: kept within 16..100000".
    void ReportOf(const UI_ControlView& control, const std::string& text);

    [[nodiscard]] const std::string& Explanation() const noexcept { return mExplanation; }
    [[nodiscard]] const std::string& Report() const noexcept { return mReport; }
    /// The report where there is one, else the explanation.
    [[nodiscard]] const std::string& Text() const noexcept { return mReport.empty() ? mExplanation : mReport; }

    /// What the program's adviser says of a control, empty without adviser or document.
    [[nodiscard]] std::string Advice(const UI_ControlView& control, const std::string& complaint) const;

private:
    void Changed();

    UI_Dialog& mDialog;
    std::string mExplanation;
    std::string mReport;
};

} // namespace qelui
