#include "ValueWidgets.h"

#include "ElidedLabel.h"
#include "ScrubField.h"

#include <kestrel/qt/EventSeam.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QMouseEvent>
#include <QStandardItemModel>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace kestrelqt {

namespace {

/// A combo box as wide as its longest item, and at least as large as its model says. Scrolling the dialog
/// with the wheel does not change it. A click on a disabled item does nothing, whereas Qt would choose the
/// current item again.
class ChoiceBox final : public QComboBox {
public:
    ChoiceBox(const qelui::UI_Popup& popup, QWidget* parent)
        : QComboBox(parent), mLeast(popup.MinWidth(), popup.MinHeight())
    {
        // Its width comes from `sizeHint`: the policies that look at the items shrink the box at each change.
        setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        view()->viewport()->installEventFilter(this);
    }

    [[nodiscard]] QSize sizeHint() const override
    {
        int widest = 0;
        for (int index = 0; index < count(); ++index) {
            widest = qMax(widest, fontMetrics().horizontalAdvance(itemText(index)));
        }
        QStyleOptionComboBox option;
        initStyleOption(&option);
        const QSize contents(widest + kTextMargin, fontMetrics().height());
        return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this).expandedTo(mLeast);
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const bool isClick =
            event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease;
        if (isClick && watched == view()->viewport()) {
            const QPoint at = static_cast<QMouseEvent*>(event)->position().toPoint();
            const QModelIndex item = view()->indexAt(at);
            if (item.isValid() && !item.flags().testFlag(Qt::ItemIsEnabled)) {
                return true;
            }
        }
        return QComboBox::eventFilter(watched, event);
    }

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        if (hasFocus()) {
            QComboBox::wheelEvent(event);
        } else {
            event->ignore();
        }
    }

private:
    static constexpr int kTextMargin = 8; // logical pixels between text and arrow
    QSize mLeast;
};

NumberField* MakeField(qelui::UI_NumberView& number, QWidget* parent)
{
    if (number.Kind() == qelui::ControlKind::HotTextNumber) {
        return new ScrubField(number, parent);
    }
    return new NumberField(number, parent);
}

QString Spoken(const qelui::UI_NumberView& number)
{
    QString text = QString::fromStdString(number.Tooltip());
    if (number.Kind() == qelui::ControlKind::HotTextNumber) {
        text += QStringLiteral("\nDrag sideways, with Shift faster, with Ctrl finer; double-click to type.");
    }
    return text;
}

} // namespace

PopupWidget::PopupWidget(qelui::UI_Popup& popup, QWidget* parent)
    : mModel(popup), mWidget(new ChoiceBox(popup, parent))
{
    DressWidget(*mWidget, popup);
    mWidget->setFocusPolicy(Qt::StrongFocus);
    mWidget->setMaxVisibleItems(20);
    QObject::connect(mWidget, &QComboBox::activated, mWidget, [this](int index) {
        AtSeam([this, index] {
            mModel.Choose(index);
            Follow();
        });
    });
    Follow();
}

QWidget* PopupWidget::Widget() const
{
    return mWidget;
}

void PopupWidget::Follow()
{
    const auto& items = mModel.Items();
    if (mWidget->count() != static_cast<int>(items.size())) {
        mWidget->clear();
        for (const auto& item : items) {
            mWidget->addItem(QString::fromStdString(item.text));
        }
        mWidget->updateGeometry();
    }
    auto* const rows = qobject_cast<QStandardItemModel*>(mWidget->model());
    for (int index = 0; index < mWidget->count(); ++index) {
        const auto& item = items[static_cast<std::size_t>(index)];
        mWidget->setItemText(index, QString::fromStdString(item.text));
        rows->item(index)->setEnabled(item.enabled);
    }
    mWidget->setCurrentIndex(mModel.GetValue());
    mWidget->setEnabled(mModel.IsEnabled());
}

qelui::script::SeenState PopupWidget::See() const
{
    qelui::script::SeenState seen{.value = std::to_string(mWidget->currentIndex()),
                                  .text = mWidget->currentText().toStdString(),
                                  .enabled = mWidget->isEnabled(),
                                  .items = {}};
    const auto* const rows = qobject_cast<QStandardItemModel*>(mWidget->model());
    for (int index = 0; index < mWidget->count(); ++index) {
        seen.items.push_back({mWidget->itemText(index).toStdString(), rows->item(index)->isEnabled()});
    }
    return seen;
}

NumberWidget::NumberWidget(qelui::UI_NumberView& number, QWidget* parent)
    : mModel(number), mWidget(MakeField(number, parent))
{
    DressWidget(*mWidget, number);
    KeepLeastSize(*mWidget, number);
    mWidget->setToolTip(Spoken(number));
    mWidget->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QWidget* NumberWidget::Widget() const
{
    return mWidget;
}

void NumberWidget::Follow()
{
    mWidget->Follow();
}

qelui::script::SeenState NumberWidget::See() const
{
    const std::string text = mWidget->text().toStdString();
    return {.value = text, .text = text, .enabled = mWidget->isEnabled(), .items = {}};
}

StaticTextWidget::StaticTextWidget(qelui::UI_StaticText& text, QWidget* parent)
    : mModel(text), mWidget(new ElidedLabel(parent))
{
    DressWidget(*mWidget, text);
    KeepLeastSize(*mWidget, text);
    Follow();
}

QWidget* StaticTextWidget::Widget() const
{
    return mWidget;
}

void StaticTextWidget::Follow()
{
    const bool bothEnds = mModel.GetDisplayOption() == qelui::DisplayOption::ElideMiddle;
    mWidget->SetText(QString::fromStdString(mModel.GetValue()), bothEnds ? Qt::ElideMiddle : Qt::ElideRight,
                     QString::fromStdString(mModel.Tooltip()));
    mWidget->setEnabled(mModel.IsEnabled());
}

qelui::script::SeenState StaticTextWidget::See() const
{
    return {
        .value = {}, .text = mWidget->WholeText().toStdString(), .enabled = mWidget->isEnabled(), .items = {}};
}

} // namespace kestrelqt
