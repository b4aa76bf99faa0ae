#include "ValueWidgets.h"

#include "ChoiceBox.h"
#include "ElidedLabel.h"
#include "ScrubField.h"

#include <kestrel/qt/EventSeam.h>

#include <QStandardItemModel>

namespace kestrelqt {

namespace {

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
    // The whole name, which the box may have to cut, before the explanation.
    const QString name = mWidget->currentText();
    const QString explanation = QString::fromStdString(mModel.Tooltip());
    mWidget->setToolTip(name.isEmpty() ? explanation : name + QLatin1Char('\n') + explanation);
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
    mWidget->SetText(QString::fromStdString(mModel.GetValue()), QString::fromStdString(mModel.Tooltip()));
    mWidget->setEnabled(mModel.IsEnabled());
}

qelui::script::SeenState StaticTextWidget::See() const
{
    return {
        .value = {}, .text = mWidget->WholeText().toStdString(), .enabled = mWidget->isEnabled(), .items = {}};
}

} // namespace kestrelqt
