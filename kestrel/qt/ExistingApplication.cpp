#include "ExistingApplication.h"

#include <QApplication>
#include <QScreen>
#include <QThread>

namespace kestrelqt {

bool HasApplication() noexcept
{
    return QCoreApplication::instance() != nullptr;
}

std::string WhyNotThisApplication()
{
    const auto* const application = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (application == nullptr) {
        return "this program's Qt application has no widgets (it is not a QApplication)";
    }
    if (application->thread() != QThread::currentThread()) {
        return "this program's Qt application belongs to another thread";
    }
    if (QApplication::primaryScreen() == nullptr) {
        return "this program's Qt application has no screen";
    }
    return {};
}

} // namespace kestrelqt
