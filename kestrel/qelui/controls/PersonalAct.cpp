#include "PersonalAct.h"

#include <kestrel/qelcore/text/Unicode.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <utility>

namespace qelui {

PersonalAct::PersonalAct(UI_Dialog& dialog, UI_ControlView& control)
    : mDialog(dialog), mControl(control), mLogListener([this](const qelcore::logging::Message& message) {
          // The toolkit's own warnings are no answer to what a person has done.
          if (message.context != "qt") {
              mComplaint = message.text;
          }
          qelcore::logging::Log(message.context, message.text); // goes to the older listeners
      }),
      mSaveListener([this](const ORB::SaveReport& report) {
          const std::string path = qelcore::text::ToUTF8(report.path);
          mSaved = report.status < 0 ? path + " was not saved: " + report.failure : "Saved to " + path;
          ORB::ReportSave(report); // goes to the older listeners
      })
{
    mDialog.Status().Report({});
}

void PersonalAct::Finish()
{
    if (mDialog.IsClosed()) {
        return;
    }
    std::string report = std::move(mSaved);
    if (report.empty() && !mComplaint.empty()) {
        report = mDialog.Status().Advice(mControl, mComplaint);
        report = report.empty() ? mComplaint : report;
    }
    mDialog.Status().Report(std::move(report));
    mDialog.Status().Explain(mControl);
}

} // namespace qelui
