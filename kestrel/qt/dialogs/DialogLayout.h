/// From a dialog's tree of models to a tree of widgets.
#pragma once

#include "../controls/ControlWidget.h"

#include <qelui/controls/UI_Group.h>

#include <map>
#include <memory>
#include <vector>

class QLabel;
class QWidget;

namespace kestrelqt {

/// The widgets of one dialog, by model.
struct DialogWidgets {
    std::map<const qelui::UI_ControlView*, std::unique_ptr<ControlWidget>> controls;
    /// Labels that stand before their control, and headers of groups.
    std::map<const qelui::UI_ControlView*, QLabel*> labels;
    /// What can have the focus, in reading order.
    std::vector<QWidget*> tabOrder;
};

/// Builds the widgets of a group and of everything in it.
///
/// Columns of controls are forms: labels right-aligned in one column, controls in the next; rows stand side by
/// side and share the width. Groups with a border are cards with their header on top.
[[nodiscard]] QWidget* BuildGroup(qelui::UI_Group& group, QWidget* parent, DialogWidgets& widgets);

} // namespace kestrelqt
