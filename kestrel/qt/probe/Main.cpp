/// Finds out whether Qt can open windows here. Qt ends the process if it cannot, so a host must not try it in
/// its own process.
///
/// Writes Qt's warnings to standard output, one a line, and at the end "ok" if windows can be opened.

#include "Answer.h"

#include <QApplication>
#include <QScreen>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>

namespace {

void WriteLine(const QString& text)
{
    (void)std::fputs(text.simplified().toUtf8().append('\n').constData(), stdout);
}

[[noreturn]] void End()
{
    (void)std::fflush(stdout);
    // Without Qt's destructors, which may hang in the window system.
    std::_Exit(EXIT_SUCCESS);
}

void Take(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg) {
        WriteLine(text);
    }
    if (type == QtFatalMsg) {
        End(); // before Qt aborts
    }
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(Take);
    const QApplication application(argc, argv);
    if (QApplication::primaryScreen() == nullptr) {
        WriteLine(QStringLiteral("There is no screen"));
        End();
    }
    WriteLine(QLatin1String(kestrelqt::kProbeSuccess));
    End();
}
