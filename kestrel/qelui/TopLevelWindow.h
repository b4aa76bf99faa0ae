/// A top-level window: a host's main window, or a dialog. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>

namespace qelworkspace::workspace {
class Workspace;
}

namespace qelui {

class KESTRELUI_API TopLevelWindow {
public:
    TopLevelWindow() = default;
    virtual ~TopLevelWindow();
    TopLevelWindow(const TopLevelWindow&) = delete;
    TopLevelWindow& operator=(const TopLevelWindow&) = delete;

    /// The toolkit's own window (a `QWidget*` for the Qt toolkit); null before it exists and without a window
    /// system. Only the toolkit that set it uses it. @{
    [[nodiscard]] void* NativeWindow() const noexcept { return mNativeWindow; }
    void SetNativeWindow(void* window) noexcept { mNativeWindow = window; }
    /// @}

    /// The workspace that the window shows, null for dialogs.
    [[nodiscard]] virtual qelworkspace::workspace::Workspace* GetWorkspace() noexcept { return nullptr; }

private:
    void* mNativeWindow = nullptr;
};

} // namespace qelui
