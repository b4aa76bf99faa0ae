/// Base of views that are built from a layout text.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/classref/UnknownBase.h>
#include <kestrel/qelui/DrawSupplier.h>
#include <kestrel/qelui/TopLevelWindow.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace qellumenfactory {

/// What a view must implement for its layout.
class KESTRELUI_API UI_ILumenView : public qelcore::classref::UnknownBase {
public:
    static constexpr std::string_view kTypeName = "qellumenfactory::UI_ILumenView";
    /// Looks up the controls, registers handlers and sets values. Called once, after all controls are made
    /// and before the dialog is shown. If it throws, the dialog is not shown.
    virtual void BindControls() = 0;
};

/// Which dialect a view reads if its layout exists in both.
enum LumenVersionPreference : int { kPreferSable = 0, kPreferLumen = 1 };

/// A modal view. Use: construct, give it its layout text, run it, read the results, destroy it. [ui-thread]
class KESTRELUI_API UI_LumenViewBase : public UI_ILumenView {
public:
    UI_LumenViewBase(const UI_LumenViewBase&) = delete;
    UI_LumenViewBase& operator=(const UI_LumenViewBase&) = delete;

    [[nodiscard]] void* QueryInterface(std::string_view typeName) noexcept override;

    /// Writes the layout text for `identifier` to `stream`: the resource of that name of a loaded library, in
    /// the preferred dialect if it is there, else in the other one.
    /// @return whether there is one.
    [[nodiscard]] bool GetScriptStream(std::string_view identifier, std::ostream& stream) const;

    /// Builds the controls that the layout in `stream` describes, has them bound, and runs the dialog;
    /// returns when it has closed.
    /// @throws LayoutError               the text is not a valid layout.
    /// @throws qelui::NoToolkitError     no toolkit can show the dialog.
    /// @throws anything                  that `BindControls` or a change handler throws.
    void ParseLumenScript(std::istream& stream);

protected:
    /// @param parent  Borrowed; null for none.
    UI_LumenViewBase(std::string identifier, const qelui::DrawSupplier& supplier, qelui::TopLevelWindow* parent,
                     LumenVersionPreference preference);
    ~UI_LumenViewBase() override;

    [[nodiscard]] const std::string& Identifier() const noexcept { return mIdentifier; }
    [[nodiscard]] const qelui::DrawSupplier& GetDrawSupplier() const noexcept { return mSupplier; }
    /// The dialog. Valid from the call of `BindControls`.
    [[nodiscard]] qelui::UI_Dialog& GetDialog() const noexcept { return *mDialog; }

private:
    std::string mIdentifier;
    qelui::DrawSupplier mSupplier;
    qelui::TopLevelWindow* mParent;
    LumenVersionPreference mPreference;
    std::unique_ptr<qelui::UI_Dialog> mDialog;
};

} // namespace qellumenfactory
