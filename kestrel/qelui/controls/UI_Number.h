/// Controls that hold a number: number edits, and hot-text numbers, which can be dragged.
/// Threads: [ui-thread] for the controls, [thread-safe] for the functions.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/controls/UI_ControlView.h>

#include <optional>
#include <string>
#include <string_view>

namespace qelui {

/// `value` with `decimals` digits after the point, the same in every locale; zero never has a sign.
[[nodiscard]] KESTRELUI_API std::string FormatNumber(double value, int decimals);

/// Parses a finite number that a person has typed: decimal digits, with optional point, exponent, sign and
/// surrounding blanks. Nothing if the text is not such a number.
[[nodiscard]] KESTRELUI_API std::optional<double> ParseNumber(std::string_view text) noexcept;

/// `value` rounded to `decimals` digits after the point, halves away from zero.
[[nodiscard]] KESTRELUI_API double RoundToDecimals(double value, int decimals) noexcept;

/// What both number controls share. The value may have more digits than are shown. A toolkit shows
/// `ShownText()` and calls `EnterValue` only after a person has edited the text or dragged the number:
/// otherwise moving the focus through a field would round its value.
class KESTRELUI_API UI_NumberView : public UI_ControlView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_NumberView";
    static constexpr int kMostDecimals = 15;

    [[nodiscard]] double GetValue() const noexcept { return mValue; }
    void SetValue(double value);

    [[nodiscard]] std::optional<double> Minimum() const noexcept { return mMinimum; }
    [[nodiscard]] std::optional<double> Maximum() const noexcept { return mMaximum; }
    void SetLimits(std::optional<double> minimum, std::optional<double> maximum);

    /// Digits after the point, 0..`kMostDecimals`. @{
    [[nodiscard]] int DecimalPlaces() const noexcept { return mDecimalPlaces; }
    void SetDecimalPlaces(int places);
    /// @}

    /// Whether 0 can be entered although it is outside the limits. @{
    [[nodiscard]] bool IsZeroAllowed() const noexcept { return mZeroAllowed; }
    void SetZeroAllowed(bool allowed) noexcept { mZeroAllowed = allowed; }
    /// @}

    /// The step of an arrow key or a drag. Unless it is set, it fits the decimals: 1 without decimals, 0.1 with
    /// one, else 0.01. @{
    [[nodiscard]] double Step() const noexcept;
    void SetStep(double step) noexcept { mStep = step; }
    /// @}

    /// Unit shown behind the number, "Hz"; may be empty. @{
    [[nodiscard]] const std::string& PostLabel() const noexcept { return mPostLabel; }
    void SetPostLabel(std::string postLabel);
    /// @}

    /// An entered number, rounded to the decimals and then kept within the limits.
    [[nodiscard]] double Constrain(double entered) const noexcept;

    /// A person enters a number: it is constrained and stored, and the handlers run, also if the number is
    /// the same as before. The status line says so if the number is another one afterwards. Does nothing if the
    /// control is disabled or the number is not finite.
    void EnterValue(double value);

    /// A person enters a text. If it is no number, the value stays and the status line says so.
    void EnterText(std::string_view text);

    [[nodiscard]] std::string ShownText() const override;

protected:
    using UI_ControlView::UI_ControlView;

private:
    /// What became of an entered number that is not the value now; empty where it is.
    [[nodiscard]] std::string FateOf(double entered) const;
    /// Puts it into the status line, which keeps the first report of an act.
    void ReportFate(const std::string& fate);

    double mValue = 0.0;
    std::optional<double> mMinimum;
    std::optional<double> mMaximum;
    int mDecimalPlaces = 0;
    bool mZeroAllowed = false;
    std::optional<double> mStep;
    std::string mPostLabel;
};

/// A field to type a number into.
class KESTRELUI_API UI_NumberEdit final : public UI_NumberView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_NumberEdit";
    explicit UI_NumberEdit(std::string identifier)
        : UI_NumberView(ControlKind::NumberEdit, std::move(identifier))
    {
    }
};

/// A number in running text, which a person drags sideways or types. During a drag only the shown number
/// changes; it is entered once, on release.
class KESTRELUI_API UI_HotTextNumber final : public UI_NumberView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_HotTextNumber";
    explicit UI_HotTextNumber(std::string identifier)
        : UI_NumberView(ControlKind::HotTextNumber, std::move(identifier))
    {
    }
};

} // namespace qelui
