/// Collects what the change handlers of one act of a person log and save, for the status line.
#pragma once

#include <kestrel/orb/SaveReport.h>
#include <kestrel/qelcore/logging/Log.h>

#include <string>

namespace qelui {

class UI_ControlView;
class UI_Dialog;

/// Exists while the handlers of an act run. Older listeners also receive what it receives.
class PersonalAct {
public:
    /// Removes the report of the act before.
    PersonalAct(UI_Dialog& dialog, UI_ControlView& control);
    ~PersonalAct() = default;
    PersonalAct(const PersonalAct&) = delete;
    PersonalAct& operator=(const PersonalAct&) = delete;

    /// The handlers have run: puts what came of the act into the status line.
    void Finish();

private:
    UI_Dialog& mDialog;
    UI_ControlView& mControl;
    std::string mComplaint;
    std::string mSaved;
    qelcore::logging::ScopedListener mLogListener;
    ORB::ScopedSaveListener mSaveListener;
};

} // namespace qelui
