/// Builds the tree of widgets for a dialog's tree of models.
#pragma once

#include <kestrel/qelui/controls/UI_Group.h>
#include <kestrel/qt/controls/ControlWidget.h>

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
    /// The groups that stand side by side in a row.
    std::map<const qelui::UI_ControlView*, std::vector<QWidget*>> rows;
    /// The widgets that can have the focus, in reading order.
    std::vector<QWidget*> tabOrder;
};

/// The row of OK and Cancel that ends a dialog; null in other groups and where there is none.
[[nodiscard]] qelui::UI_Group* OkCancelRowOf(qelui::UI_Group& group);

/// Builds the widgets of a group and of everything in it, except the dialog's `OkCancelRowOf`: the window
/// shows that row outside the part that scrolls.
///
/// Columns of controls are forms: labels right-aligned in one column, controls in the next; rows stand side by
/// side and share the width. Groups with a border are cards with their header on top.
[[nodiscard]] QWidget* BuildGroup(qelui::UI_Group& group, QWidget* parent, DialogWidgets& widgets);

} // namespace kestrelqt
