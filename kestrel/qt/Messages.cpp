#include "Messages.h"

#include <kestrel/qelcore/logging/Log.h>

#include <QString>
#include <QtGlobal>
#include <algorithm>
#include <array>

namespace kestrelqt {

namespace {

/// Beginnings of warnings that tell a person nothing: the platform lacks a nicety, or the session has no
/// folder for sockets that are not used here.
constexpr std::array<const char*, 3> kChatter = {
    "This plugin does not support ", "QStandardPaths: XDG_RUNTIME_DIR ", "QStandardPaths: wrong permissions "};

void Forward(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    const bool isSerious = type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg;
    if (isSerious && !IsChatter(text)) {
        qelcore::logging::Log("qt", text.simplified().toStdString());
    }
}

} // namespace

bool IsChatter(const QString& text)
{
    return std::any_of(kChatter.begin(), kChatter.end(),
                       [&text](const char* beginning) { return text.startsWith(QLatin1String(beginning)); });
}

void SendQtMessagesToLog()
{
    qInstallMessageHandler(Forward);
}

} // namespace kestrelqt
