#include "UI_Dialog.h"

#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/script/ScriptRunner.h>
#include <kestrel/qelui/toolkit/Toolkit.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <filesystem>
#include <memory>
#include <utility>

namespace qelui {

WindowObserver::~WindowObserver() = default;

UI_Dialog::UI_Dialog(std::string identifier) : UI_Group(std::move(identifier), ControlKind::Dialog)
{
    SetBorder(false);
}

UI_Dialog::~UI_Dialog() = default;

void UI_Dialog::RunModal()
{
    UserInterface& userInterface = UserInterface::Get();
    userInterface.SetScriptFailure(std::nullopt);
    userInterface.SetLastDocument(std::nullopt);
    Toolkit& toolkit = userInterface.GetToolkit();

    std::unique_ptr<script::ScriptRunner> runner;
    if (const std::filesystem::path file = userInterface.Script(); !file.empty()) {
        runner = std::make_unique<script::ScriptRunner>(file, *this);
    }
    mScript = runner.get();
    mFirstDocument = DocumentNow();
    try {
        toolkit.RunModal(*this);
    } catch (...) {
        mScript = nullptr;
        throw;
    }
    RequestCancel();
    mScript = nullptr;
    userInterface.SetLastDocument(DocumentNow());
    if (runner) {
        userInterface.SetScriptFailure(runner->Failure());
    }
    if (mKeptException) {
        std::rethrow_exception(std::exchange(mKeptException, nullptr));
    }
}

void UI_Dialog::Close()
{
    if (mClosed) {
        return;
    }
    mClosed = true;
    if (mObserver != nullptr) {
        mObserver->OnDialogClosed();
    }
}

void UI_Dialog::RequestCancel()
{
    if (mClosed) {
        return;
    }
    if (auto* const cancel = dynamic_cast<UI_Button*>(FindControl(UI_OkCancelRow::kCancelIdentifier))) {
        cancel->Press();
    }
    Close();
}

void UI_Dialog::RequestClose()
{
    if (!mWasWarned && HasChanges()) {
        mWasWarned = true;
        mStatus.Report("Close again to discard the changes");
        return;
    }
    RequestCancel();
}

void UI_Dialog::NoteAct() noexcept
{
    mWasUsed = true;
    mWasWarned = false;
}

bool UI_Dialog::HasChanges() const noexcept
{
    // Without a document, every act counts as a change.
    return mWasUsed && (!mFirstDocument || DocumentNow() != mFirstDocument);
}

std::optional<std::string> UI_Dialog::DocumentNow() const noexcept
{
    try {
        return mDocument ? std::optional(mDocument()) : std::nullopt;
    } catch (...) {
        qelcore::logging::LogCurrentException("qelui::UI_Dialog"); // The dialog's result is valid without it.
        return std::nullopt;
    }
}

void UI_Dialog::KeepException(std::exception_ptr exception) noexcept
{
    // The first exception is the cause; later ones may follow from it.
    if (!mKeptException) {
        mKeptException = std::move(exception);
    }
    Close();
}

} // namespace qelui
