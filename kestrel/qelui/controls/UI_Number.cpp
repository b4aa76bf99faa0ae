#include "UI_Number.h"

#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

namespace qelui {

namespace {

/// The shortest text that reads back as the same number, as limits are written: "0.1", "100000".
std::string ShortText(double value)
{
    std::array<char, 32> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::string text = error == std::errc{} ? std::string(buffer.data(), end) : std::string();
    // to_chars prefers "1e+05" where that is shorter.
    constexpr double kLongestWhole = 1e15;
    if (text.find('e') != std::string::npos && std::abs(value) < kLongestWhole && std::round(value) == value) {
        text = FormatNumber(value, 0);
    }
    return text;
}

} // namespace

std::string FormatNumber(double value, int decimals)
{
    const int places = std::clamp(decimals, 0, UI_NumberView::kMostDecimals);
    // A sign, the 309 digits of the largest double, the point, the decimals.
    std::array<char, 1 + 309 + 1 + UI_NumberView::kMostDecimals> buffer{};
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, places);
    std::string text = error == std::errc{} ? std::string(buffer.data(), end) : std::string();
    // -0 and numbers that round to it would be shown as "-0.00".
    if (text.starts_with('-') && text.find_first_of("123456789in") == std::string::npos) {
        text.erase(0, 1);
    }
    return text;
}

std::optional<double> ParseNumber(std::string_view text) noexcept
{
    constexpr std::string_view kBlanks = " \t";
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    text = text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
    // from_chars does not take a plus sign, nor should "+-1" be a number.
    if (text.front() == '+') {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

double RoundToDecimals(double value, int decimals) noexcept
{
    const double scale = std::pow(10.0, std::clamp(decimals, 0, UI_NumberView::kMostDecimals));
    const double scaled = value * scale;
    // From 2^52 on, doubles have no digits after the point.
    if (!(std::abs(scaled) < 4503599627370496.0)) {
        return value;
    }
    // Adding zero turns -0 into 0.
    return std::round(scaled) / scale + 0.0;
}

void UI_NumberView::SetValue(double value)
{
    mValue = value;
    ChangedLook();
}

void UI_NumberView::SetLimits(std::optional<double> minimum, std::optional<double> maximum)
{
    mMinimum = minimum;
    mMaximum = maximum;
    ChangedLook();
}

void UI_NumberView::SetDecimalPlaces(int places)
{
    mDecimalPlaces = std::clamp(places, 0, kMostDecimals);
    ChangedLook();
}

void UI_NumberView::SetPostLabel(std::string postLabel)
{
    mPostLabel = std::move(postLabel);
    ChangedLook();
}

double UI_NumberView::Constrain(double entered) const noexcept
{
    const double rounded = RoundToDecimals(entered, mDecimalPlaces);
    if (mZeroAllowed && rounded == 0.0) {
        return 0.0;
    }
    if (mMinimum && rounded < *mMinimum) {
        return *mMinimum;
    }
    if (mMaximum && rounded > *mMaximum) {
        return *mMaximum;
    }
    return rounded;
}

void UI_NumberView::EnterValue(double value)
{
    if (!IsEnabled() || !std::isfinite(value)) {
        return;
    }
    SetValue(Constrain(value));
    NotifyChanged();
    if (const std::string fate = FateOf(value); !fate.empty()) {
        ReportFate(fate);
    }
}

void UI_NumberView::EnterText(std::string_view text)
{
    if (const std::optional<double> value = ParseNumber(text)) {
        EnterValue(*value);
        if (RoundToDecimals(*value, mDecimalPlaces) != *value) {
            ReportFate("rounded to " + ShownText());
        }
    } else if (IsEnabled()) {
        if (UI_Dialog* const dialog = Dialog()) {
            dialog->Status().Report({});
        }
        ReportFate("not a number, " + ShownText() + " kept");
    }
}

void UI_NumberView::ReportFate(const std::string& fate)
{
    UI_Dialog* const dialog = Dialog();
    if (dialog != nullptr && !dialog->IsClosed() && dialog->Status().Report().empty()) {
        dialog->Status().ReportOf(*this, fate);
    }
}

double UI_NumberView::Step() const noexcept
{
    if (mStep) {
        return *mStep;
    }
    return mDecimalPlaces == 0 ? 1.0 : mDecimalPlaces == 1 ? 0.1 : 0.01;
}

std::string UI_NumberView::FateOf(double entered) const
{
    const double rounded = RoundToDecimals(entered, mDecimalPlaces);
    const double constrained = Constrain(entered);
    if (constrained != rounded) {
        if (mMinimum && mMaximum) {
            return "kept within " + ShortText(*mMinimum) + ".." + ShortText(*mMaximum);
        }
        return mMinimum && rounded < *mMinimum ? "kept at " + ShortText(*mMinimum) + ", the smallest value"
                                               : "kept at " + ShortText(*mMaximum) + ", the largest value";
    }
    const std::string accepted = FormatNumber(constrained, mDecimalPlaces);
    const std::string shown = ShownText();
    // A handler may have moved the number, such as to whole frames.
    return accepted == shown ? std::string() : accepted + " was moved to " + shown;
}

std::string UI_NumberView::ShownText() const
{
    return FormatNumber(mValue, mDecimalPlaces);
}

} // namespace qelui
