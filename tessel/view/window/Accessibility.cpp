#include "Accessibility.h"

#include "MetersPanel.h"
#include "PictureView.h"
#include "Readout.h"
#include "ScopesPanel.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace tessel::view {
namespace {

/// Qt asks for every object that assistive tools reach; the tools own what is returned.
QAccessibleInterface* InterfaceOf(const QString& /*className*/, QObject* object)
{
    auto* const widget = qobject_cast<QWidget*>(object);
    if (dynamic_cast<PictureView*>(widget) != nullptr) {
        return new QAccessibleWidget(widget, QAccessible::Graphic); // NOLINT(cppcoreguidelines-owning-memory)
    }
    if (dynamic_cast<ScopesPanel*>(widget) != nullptr || dynamic_cast<MetersPanel*>(widget) != nullptr) {
        return new QAccessibleWidget(widget, QAccessible::Chart); // NOLINT(cppcoreguidelines-owning-memory)
    }
    if (dynamic_cast<Readout*>(widget) != nullptr) {
        return new QAccessibleWidget(widget,
                                     QAccessible::StaticText); // NOLINT(cppcoreguidelines-owning-memory)
    }
    return nullptr;
}

} // namespace

void InstallAccessibleRoles()
{
    QAccessible::installFactory(&InterfaceOf);
}

} // namespace tessel::view
