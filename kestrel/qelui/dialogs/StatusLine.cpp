#include "StatusLine.h"

#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <utility>

namespace qelui {

void StatusLine::Explain(const UI_ControlView& control)
{
    std::string text = control.Tooltip();
    if (const std::string advice = Advice(control, /*complaint=*/""); !advice.empty()) {
        text += (text.empty() ? "" : " ") + advice;
    }
    if (text != mExplanation) {
        mExplanation = std::move(text);
        Changed();
    }
}

void StatusLine::ExplainFirst()
{
    for (const UI_ControlView* const control : mDialog.AllControls()) {
        if (IsActedOn(control->Kind()) && control->IsEnabled()) {
            Explain(*control);
            return;
        }
    }
}

void StatusLine::Report(std::string text)
{
    if (text != mReport) {
        mReport = std::move(text);
        Changed();
    }
}

void StatusLine::ReportOf(const UI_ControlView& control, const std::string& text)
{
    const std::string name = NameFromLabel(control.Label());
    Report(name.empty() ? text : name + ": " + text);
}

std::string StatusLine::Advice(const UI_ControlView& control, const std::string& complaint) const
{
    const Adviser& adviser = UserInterface::Get().GetAdviser();
    const std::optional<std::string> document = adviser ? mDialog.DocumentNow() : std::nullopt;
    if (!document) {
        return {};
    }
    try {
        return adviser({.control = control.Identifier(), .settingsText = *document, .complaint = complaint});
    } catch (...) {
        qelcore::logging::LogCurrentException("qelui::StatusLine"); // The dialog works without advice.
        return {};
    }
}

void StatusLine::Changed()
{
    if (mDialog.mObserver != nullptr) {
        mDialog.mObserver->OnStatusChanged();
    }
}

} // namespace qelui
