#include "UserInterface.h"

#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelui/script/ScriptedToolkit.h>
#include <kestrel/qelui/toolkit/ToolkitLibrary.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace qelui {

namespace {

std::string Variable(const char* name)
{
    // Called on the ui thread. Only that thread may change the environment.
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? std::string() : std::string(value);
}

Toolkit& TheScriptedToolkit()
{
    static script::ScriptedToolkit toolkit;
    return toolkit;
}

} // namespace

NoToolkitError::NoToolkitError(const std::string& line) : Exception(line), std::runtime_error(line) {}
NoToolkitError::~NoToolkitError() = default;

std::string ScriptFailure::Describe() const
{
    return line == 0 ? script + ": " + text : script + ':' + std::to_string(line) + ": " + text;
}

UserInterface& UserInterface::Get()
{
    static UserInterface instance;
    return instance;
}

Toolkit& UserInterface::GetToolkit()
{
    if (mToolkit != nullptr) {
        return *mToolkit;
    }
    const std::string wanted = Variable("KESTREL_UI");
    const bool haveScript = !Script().empty();
    const bool hasWindows = IsQtToolkitPresent();
    std::string whyNot = "there is no display (DISPLAY and WAYLAND_DISPLAY are not set)";
    if (!hasWindows) {
        whyNot += ", and " + WindowsMissing();
    }
    if (wanted == "scripted") {
        if (haveScript) {
            return TheScriptedToolkit();
        }
        throw NoToolkitError("KESTREL_UI is scripted, but no script is named: name one with " + ScriptNames());
    }
    if (!wanted.empty() && wanted != "qt") {
        throw NoToolkitError("KESTREL_UI is \"" + wanted + "\"; it may be qt or scripted");
    }
    if (wanted == "qt" || IsDisplayPresent()) {
        if (!hasWindows) {
            whyNot = WindowsMissing();
        } else if (Toolkit* const toolkit = LoadQtToolkit(whyNot)) {
            return *toolkit;
        }
    }
    if (wanted.empty() && haveScript) {
        return TheScriptedToolkit();
    }
    throw NoToolkitError("the dialog cannot be shown: " + whyNot +
                         "; a script can work it without a display (" + ScriptNames() + ")");
}

std::string UserInterface::ScriptNames() const
{
    return (mScriptOption.empty() ? "" : mScriptOption + " or ") + "KESTREL_UI_SCRIPT";
}

std::string UserInterface::WindowsMissing() const
{
    return "the windows are not installed" +
           (mWindowsPackage.empty() ? std::string() : " (they are in the package " + mWindowsPackage + ")");
}

std::filesystem::path UserInterface::Script() const
{
    return mScript.empty() ? std::filesystem::path(Variable("KESTREL_UI_SCRIPT")) : mScript;
}

void UserInterface::SetScriptFailure(std::optional<ScriptFailure> failure)
{
    mFailure = std::move(failure);
    if (mFailure) {
        qelcore::logging::Log("qelui.script", mFailure->Describe());
    }
}

} // namespace qelui
