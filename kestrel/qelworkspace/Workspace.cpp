#include "Workspace.h"

#include <utility>
#include <vector>

namespace qelworkspace::workspace {

namespace {

std::vector<MainWindow*>& LivingWindows()
{
    static std::vector<MainWindow*> windows;
    return windows;
}

} // namespace

MainWindow::MainWindow(std::string workspaceName) : mWorkspace(std::move(workspaceName))
{
    LivingWindows().push_back(this);
}

MainWindow::~MainWindow()
{
    std::erase(LivingWindows(), this);
}

qelui::TopLevelWindow* WorkspaceUtils::FindMainTopLevelWindow() noexcept
{
    return LivingWindows().empty() ? nullptr : LivingWindows().front();
}

} // namespace qelworkspace::workspace
