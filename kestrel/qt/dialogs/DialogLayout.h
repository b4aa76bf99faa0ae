/// Builds the tree of widgets for a dialog's tree of models.
#pragma once

#include <kestrel/qelui/controls/UI_Group.h>
#include <kestrel/qt/controls/ControlWidget.h>

#include <QChar>
#include <array>
#include <map>
#include <memory>
#include <vector>

class QLabel;
class QWidget;

namespace kestrelqt {

/// How close the parts of a dialog stand. The layout's own numbers hold where there is room.
struct Density {
    int spacing = 8;     ///< logical pixels between parts, where the layout does not say
    int cardMargin = 12; ///< logical pixels inside the border of a group, likewise
    double ownShare = 1; ///< of the layout's own spacings and margins
    /// In groups side by side a button stands beside the text that shows what was chosen with it, else above
    /// it. In a group with the dialog's whole width it always stands beside it.
    bool sharesRows = true;

    [[nodiscard]] int SpacingOf(const qelui::UI_Group& group) const;
    [[nodiscard]] int MarginOf(const qelui::UI_Group& group, bool isCard) const;
};

/// From the roomiest to the one for the narrowest screens.
inline constexpr std::array<Density, 4> kDensities{{
    {.spacing = 8, .cardMargin = 12, .ownShare = 1.0, .sharesRows = true},
    {.spacing = 5, .cardMargin = 9, .ownShare = 0.8, .sharesRows = true},
    {.spacing = 3, .cardMargin = 7, .ownShare = 0.5, .sharesRows = true},
    {.spacing = 3, .cardMargin = 7, .ownShare = 0.5, .sharesRows = false},
}};

/// The widgets of one dialog, by model.
struct DialogWidgets {
    Density density;
    /// The letter that with Alt leads to a control.
    std::map<const qelui::UI_ControlView*, QChar> altLetters;
    std::map<const qelui::UI_ControlView*, std::unique_ptr<ControlWidget>> controls;
    /// Labels that stand before their control, and headers of groups.
    std::map<const qelui::UI_ControlView*, QLabel*> labels;
    /// The groups that stand side by side in a row.
    std::map<const qelui::UI_ControlView*, std::vector<QWidget*>> rows;
    /// The group whose colour a number is a channel of.
    std::map<const qelui::UI_ControlView*, const qelui::UI_Group*> chips;
    /// The widgets that can have the focus at some time, in reading order.
    std::vector<QWidget*> tabOrder;
};

/// The row of OK and Cancel that ends a dialog; null in other groups and where there is none.
[[nodiscard]] qelui::UI_Group* OkCancelRowOf(qelui::UI_Group& group);

/// Builds the widgets of a group and of everything in it, except the dialog's `OkCancelRowOf`: the window
/// shows that row outside the part that scrolls.
///
/// Columns of controls are forms: labels right-aligned in one column, controls in the next; rows stand side by
/// side and share the width. Groups with a border are cards with their header on top. A button and the static
/// text behind it are one row, and the button of a column of colour channels shows their colour.
[[nodiscard]] QWidget* BuildGroup(qelui::UI_Group& group, QWidget* parent, DialogWidgets& widgets);

} // namespace kestrelqt
