/// The host's main window and what it shows.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/TopLevelWindow.h>

#include <string>

namespace qelworkspace::workspace {

/// What a main window shows, by name ("View").
class Workspace {
public:
    explicit Workspace(std::string name) : mName(std::move(name)) {}
    [[nodiscard]] const std::string& Name() const noexcept { return mName; }

private:
    std::string mName;
};

/// A program makes one for its main window and gives it that window with `SetNativeWindow`; plug-ins' dialogs
/// then open over it. `WorkspaceUtils` finds it from construction to destruction. [ui-thread]
class KESTRELUI_API MainWindow final : public qelui::TopLevelWindow {
public:
    explicit MainWindow(std::string workspaceName);
    ~MainWindow() override;
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;
    [[nodiscard]] Workspace* GetWorkspace() noexcept override { return &mWorkspace; }

private:
    Workspace mWorkspace;
};

struct KESTRELUI_API WorkspaceUtils {
    /// The oldest main window that still exists; null if none does. [ui-thread]
    [[nodiscard]] static qelui::TopLevelWindow* FindMainTopLevelWindow() noexcept;
};

} // namespace qelworkspace::workspace
