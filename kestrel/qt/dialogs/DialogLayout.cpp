#include "DialogLayout.h"

#include "ColorChips.h"

#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qt/controls/AltLetters.h>
#include <kestrel/qt/style/Theme.h>

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace kestrelqt {

namespace {

using qelui::ControlKind;

constexpr int kLabelGap = 8; // logical pixels between a label and its control
constexpr int kIndent = 26;  // logical pixels from the left edge of a radio button to its text

/// A group's surface.
class Card final : public QFrame {
public:
    explicit Card(QWidget* parent) : QFrame(parent)
    {
        QPalette colors = palette();
        colors.setColor(QPalette::Window, ColorsOf(AppliedTheme()).card);
        setPalette(colors);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(palette().color(QPalette::Window));
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    }
};

QLabel* MakeLabel(const QString& text, QWidget* parent)
{
    auto* const label = new QLabel(text, parent);
    QPalette colors = label->palette();
    colors.setColor(QPalette::Active, QPalette::WindowText, ColorsOf(AppliedTheme()).dimText);
    colors.setColor(QPalette::Inactive, QPalette::WindowText, ColorsOf(AppliedTheme()).dimText);
    label->setPalette(colors);
    return label;
}

QLabel* MakeHeader(const std::string& text, QWidget* parent)
{
    auto* const header = new QLabel(QString::fromStdString(text), parent);
    QFont bold = header->font();
    bold.setWeight(QFont::DemiBold);
    header->setFont(bold);
    return header;
}

bool HasLabelBefore(ControlKind kind)
{
    return kind == ControlKind::Popup || kind == ControlKind::NumberEdit ||
           kind == ControlKind::HotTextNumber || kind == ControlKind::StaticText;
}

bool IsGroup(ControlKind kind)
{
    return kind == ControlKind::Dialog || kind == ControlKind::Group || kind == ControlKind::RadioGroup ||
           kind == ControlKind::OkCancelRow;
}

QWidget* BuildControl(qelui::UI_ControlView& control, QWidget* parent, DialogWidgets& widgets)
{
    auto binding = MakeControlWidget(control, parent);
    QWidget* const widget = binding->Widget();
    widgets.tabOrder.push_back(widget);
    if (const auto letter = widgets.altLetters.find(&control); letter != widgets.altLetters.end()) {
        binding->SetAltLetter(letter->second);
        binding->Follow();
    }
    widgets.controls.emplace(&control, std::move(binding));
    return widget;
}

/// The control, with its unit behind it where it has one.
QWidget* WithUnit(qelui::UI_ControlView& control, QWidget* widget, QWidget* parent)
{
    const auto* const number = dynamic_cast<const qelui::UI_NumberView*>(&control);
    if (number == nullptr || number->PostLabel().empty()) {
        return widget;
    }
    auto* const box = new QWidget(parent);
    auto* const row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(widget);
    row->addWidget(MakeLabel(QString::fromStdString(number->PostLabel()), box));
    row->addStretch();
    return box;
}

/// Whether a group has the whole width of the dialog, with nothing beside it.
bool IsWide(const qelui::UI_Group& group)
{
    for (const qelui::UI_Group* around = &group; around != nullptr; around = around->Parent()) {
        if (around->GetOrientation() == qelui::Orientation::Row) {
            return false;
        }
    }
    return true;
}

/// Columns of a form. In a wide group a spare column takes the remaining width, because a popup would be as
/// wide as the window otherwise. Other groups have no spare column.
enum FormColumn { kLabelColumn = 0, kControlColumn = 1, kSpareColumn = 2 };

/// A label that stands before or above its control, with the letter that leads there.
QLabel* MakeLabelOf(qelui::UI_ControlView& control, QWidget* widget, QWidget* parent, DialogWidgets& widgets)
{
    QLabel* const label = MakeLabel(QString(), parent);
    label->setBuddy(widget);
    const auto letter = widgets.altLetters.find(&control);
    label->setText(
        WithAltLetter(control.Label(), letter == widgets.altLetters.end() ? QChar() : letter->second));
    widgets.labels.emplace(&control, label);
    return label;
}

/// Whether the text shows what is chosen with the button before it: the two share a row.
bool IsBehindItsButton(const qelui::UI_ControlView& text, const qelui::UI_ControlView* before)
{
    return text.Kind() == ControlKind::StaticText && before != nullptr && before->Kind() == ControlKind::Button;
}

/// The control that stands `distance` behind another one in its group; null where there is none.
const qelui::UI_ControlView* Neighbour(const qelui::UI_ControlView& control, std::ptrdiff_t distance)
{
    const auto& siblings = control.Parent()->Children();
    const auto at = std::find_if(siblings.begin(), siblings.end(),
                                 [&control](const auto& sibling) { return sibling.get() == &control; });
    const std::ptrdiff_t index = at - siblings.begin() + distance;
    return index < 0 || index >= std::ssize(siblings) ? nullptr
                                                      : siblings[static_cast<std::size_t>(index)].get();
}

/// A text under its label.
QWidget* BuildCaptioned(qelui::UI_ControlView& control, QWidget* parent, DialogWidgets& widgets)
{
    auto* const box = new QWidget(parent);
    auto* const column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    QWidget* const widget = BuildControl(control, box, widgets);
    column->addWidget(MakeLabelOf(control, widget, box, widgets));
    column->addWidget(widget);
    return box;
}

/// Adds one child to a form.
void AddToForm(qelui::UI_ControlView& control, QGridLayout& form, int row, QWidget* parent,
               DialogWidgets& widgets)
{
    const bool isWide = IsWide(*control.Parent());
    const bool sharesRow = isWide || widgets.density.sharesRows; // a wide group has the room on every screen
    const int columns = isWide ? kSpareColumn + 1 : kControlColumn + 1;
    if (IsGroup(control.Kind())) {
        auto& group = static_cast<qelui::UI_Group&>(control);
        form.addWidget(BuildGroup(group, parent, widgets), row, kLabelColumn, 1, columns);
        return;
    }
    if (IsBehindItsButton(control, Neighbour(control, -1))) {
        QWidget* const text = BuildCaptioned(control, parent, widgets);
        if (sharesRow) {
            form.addWidget(text, row - 1, kControlColumn, 1, columns - kControlColumn);
        } else {
            form.addWidget(text, row, kLabelColumn, 1, columns);
        }
        return;
    }
    QWidget* const widget = BuildControl(control, parent, widgets);
    const qelui::UI_ControlView* const next = Neighbour(control, 1);
    if (next != nullptr && IsBehindItsButton(*next, &control) && sharesRow) {
        form.addWidget(widget, row, kLabelColumn);
        return;
    }
    if (!HasLabelBefore(control.Kind())) {
        // A button in a group without a frame is the heading of a column and has its width.
        const bool fills = control.Kind() == ControlKind::Button && !control.Parent()->HasBorder();
        form.addWidget(widget, row, kLabelColumn, 1, columns,
                       fills ? Qt::Alignment() : Qt::Alignment(Qt::AlignLeft));
        return;
    }
    QLabel* const label = MakeLabelOf(control, widget, parent, widgets);
    if (control.Parent()->Kind() == ControlKind::RadioGroup) {
        label->setContentsMargins(kIndent, 0, 0, 0); // below the text of its radio button
    }
    form.addWidget(label, row, kLabelColumn, Qt::AlignRight | Qt::AlignVCenter);
    const bool isText = control.Kind() == ControlKind::StaticText; // takes the remaining width
    const bool isNumber = dynamic_cast<const qelui::UI_NumberView*>(&control) != nullptr;
    const int span = isText ? columns - kControlColumn : 1;
    form.addWidget(WithUnit(control, widget, parent), row, kControlColumn, 1, span,
                   isNumber ? Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter) : Qt::Alignment());
}

/// Gives the columns of rows below one another the same minimum width, so that their edges line up.
void AlignRows(const qelui::UI_Group& group, const DialogWidgets& widgets)
{
    std::map<std::pair<std::size_t, std::size_t>, int> widest; // by number of columns, and column
    const auto forEachColumn = [&](auto act) {
        for (const auto& child : group.Children()) {
            const auto row = widgets.rows.find(child.get());
            const std::size_t count = row == widgets.rows.end() ? 0 : row->second.size();
            for (std::size_t column = 0; column < count; ++column) {
                act(*row->second[column], widest[{count, column}]);
            }
        }
    };
    forEachColumn([](const QWidget& cell, int& width) { width = qMax(width, cell.minimumSizeHint().width()); });
    forEachColumn([](QWidget& cell, int width) { cell.setMinimumWidth(width); });
}

QLayout* BuildForm(qelui::UI_Group& group, QWidget* parent, DialogWidgets& widgets)
{
    auto* const form = new QGridLayout;
    form->setHorizontalSpacing(kLabelGap);
    form->setVerticalSpacing(widgets.density.SpacingOf(group));
    form->setColumnStretch(IsWide(group) ? kSpareColumn : kControlColumn, 1);
    int row = 0;
    for (const auto& child : group.Children()) {
        if (child.get() != OkCancelRowOf(group)) {
            AddToForm(*child, *form, row++, parent, widgets);
        }
    }
    form->setRowStretch(row, 1); // the remaining height is below
    AlignRows(group, widgets);
    return form;
}

QLayout* BuildRow(qelui::UI_Group& group, QWidget* parent, DialogWidgets& widgets)
{
    auto* const row = new QHBoxLayout;
    row->setSpacing(widgets.density.SpacingOf(group) + 2);
    for (const auto& child : group.Children()) {
        if (IsGroup(child->Kind())) {
            QWidget* const cell = BuildGroup(static_cast<qelui::UI_Group&>(*child), parent, widgets);
            widgets.rows[&group].push_back(cell);
            row->addWidget(cell, 1);
        } else {
            row->addWidget(BuildControl(*child, parent, widgets));
        }
    }
    return row;
}

/// OK and Cancel at the right. Return in a field presses OK.
QLayout* ArrangeOkCancel(qelui::UI_Group& group, QWidget* parent, DialogWidgets& widgets)
{
    auto* const row = new QHBoxLayout;
    row->setSpacing(widgets.density.spacing);
    row->addStretch();
    for (const auto& child : group.Children()) {
        QWidget* const widget = BuildControl(*child, parent, widgets);
        widget->setMinimumWidth(96);
        auto* const button = qobject_cast<QPushButton*>(widget);
        if (button != nullptr && child->Identifier() == qelui::UI_OkCancelRow::kOkIdentifier) {
            button->setDefault(true);
        }
        row->addWidget(widget);
    }
    return row;
}

} // namespace

int Density::SpacingOf(const qelui::UI_Group& group) const
{
    return group.Spacing() >= 0 ? qRound(group.Spacing() * ownShare) : spacing;
}

int Density::MarginOf(const qelui::UI_Group& group, bool isCard) const
{
    const int usual = isCard ? cardMargin : 0;
    return group.Margin() >= 0 ? qRound(group.Margin() * ownShare) : usual;
}

qelui::UI_Group* OkCancelRowOf(qelui::UI_Group& group)
{
    const bool isDialog = group.Kind() == ControlKind::Dialog;
    if (!isDialog || group.Children().empty() || group.Children().back()->Kind() != ControlKind::OkCancelRow) {
        return nullptr;
    }
    return static_cast<qelui::UI_Group*>(group.Children().back().get());
}

QWidget* BuildGroup(qelui::UI_Group& group, QWidget* parent, DialogWidgets& widgets)
{
    const bool isCard = group.HasBorder() && group.Kind() == ControlKind::Group;
    QWidget* const surface = isCard ? static_cast<QWidget*>(new Card(parent)) : new QWidget(parent);
    surface->setObjectName(QString::fromStdString(group.Identifier()));
    auto* const column = new QVBoxLayout(surface);
    const int margin = widgets.density.MarginOf(group, isCard);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(widgets.density.spacing);
    if (!group.Label().empty()) {
        QLabel* const header = MakeHeader(group.Label(), surface);
        widgets.labels.emplace(&group, header);
        column->addWidget(header);
    }
    if (group.Kind() == ControlKind::OkCancelRow) {
        column->addLayout(ArrangeOkCancel(group, surface, widgets));
    } else if (group.GetOrientation() == qelui::Orientation::Row) {
        column->addLayout(BuildRow(group, surface, widgets), 1);
    } else {
        column->addLayout(BuildForm(group, surface, widgets), 1);
    }
    ShowColorChips(group, widgets);
    return surface;
}

} // namespace kestrelqt
