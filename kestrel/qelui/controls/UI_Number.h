/// Controls that hold a number: number edits, and hot-text numbers, which one drags.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/controls/UI_ControlView.h>

#include <optional>
#include <string>
#include <string_view>

namespace qelui {

/// `value` with `decimals` digits after the point, in every locale alike; zero never has a sign.
[[nodiscard]] KESTRELUI_API std::string FormatNumber(double value, int decimals);

/// What a person typed as a finite number: decimal digits with a point, an exponent, a sign, blanks around.
/// Nothing where it is none.
[[nodiscard]] KESTRELUI_API std::optional<double> ParseNumber(std::string_view text) noexcept;

/// `value` rounded to `decimals` digits after the point, halves away from zero.
[[nodiscard]] KESTRELUI_API double RoundToDecimals(double value, int decimals) noexcept;

/// What both number controls share. The model holds more than it shows: a toolkit shows `ShownText()` and
/// must call `EnterValue` only after a person has really edited the text or dragged the number, or merely
/// passing through a field would round the value.
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

    /// Whether an entered 0 is taken although it lies outside the limits. @{
    [[nodiscard]] bool IsZeroAllowed() const noexcept { return mZeroAllowed; }
    void SetZeroAllowed(bool allowed) noexcept { mZeroAllowed = allowed; }
    /// @}

    /// One step by arrow key or drag; 1 at first. @{
    [[nodiscard]] double Step() const noexcept { return mStep; }
    void SetStep(double step) noexcept { mStep = step; }
    /// @}

    /// Unit shown behind the number, "Hz"; may be empty. @{
    [[nodiscard]] const std::string& PostLabel() const noexcept { return mPostLabel; }
    void SetPostLabel(std::string postLabel);
    /// @}

    /// What becomes of an entered number: rounded to the decimals, then kept within the limits.
    [[nodiscard]] double Constrain(double entered) const noexcept;

    /// A person entered a number: constrained, stored, handlers run (also where the number is the old one).
    /// Nothing happens on a disabled control or for what is no finite number.
    void EnterValue(double value);

    [[nodiscard]] std::string ShownText() const override;

protected:
    using UI_ControlView::UI_ControlView;

private:
    double mValue = 0.0;
    std::optional<double> mMinimum;
    std::optional<double> mMaximum;
    int mDecimalPlaces = 0;
    bool mZeroAllowed = false;
    double mStep = 1.0;
    std::string mPostLabel;
};

/// A field that one types into.
class KESTRELUI_API UI_NumberEdit final : public UI_NumberView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_NumberEdit";
    explicit UI_NumberEdit(std::string identifier)
        : UI_NumberView(ControlKind::NumberEdit, std::move(identifier))
    {
    }
};

/// A number in running text: dragged sideways, or clicked and typed. A drag shows its number while it lasts
/// and is entered once, on release.
class KESTRELUI_API UI_HotTextNumber final : public UI_NumberView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_HotTextNumber";
    explicit UI_HotTextNumber(std::string identifier)
        : UI_NumberView(ControlKind::HotTextNumber, std::move(identifier))
    {
    }
};

} // namespace qelui
