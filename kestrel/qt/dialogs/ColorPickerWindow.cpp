#include "ColorPickerWindow.h"

#include "ColorArea.h"

#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qt/EventSeam.h>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

namespace kestrelqt {

namespace {

using qelui::sharedui::PickerColor;

constexpr float PickerColor::*kMembers[ColorPickerWindow::kChannels] = {
    &PickerColor::red, &PickerColor::green, &PickerColor::blue, &PickerColor::alpha};

/// The nearest colour that a screen can show; not-a-number becomes 0.
QColor Shown(const PickerColor& color)
{
    const auto inRange = [](float channel) { return channel > 0.0F ? std::min(channel, 1.0F) : 0.0F; };
    return QColor::fromRgbF(inRange(color.red), inRange(color.green), inRange(color.blue),
                            inRange(color.alpha));
}

/// The old colour beside the new one, over a checkerboard.
class Patches final : public QWidget {
public:
    Patches(const PickerColor& oldColor, const PickerColor& newColor, QWidget* parent)
        : QWidget(parent), mOld(oldColor), mNew(newColor)
    {
        setFixedHeight(34);
        setAccessibleName(tr("The old colour, left, and the new one"));
        setToolTip(accessibleName());
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        constexpr int kChecker = 6;
        QPainter painter(this);
        for (int y = 0; y < height(); y += kChecker) {
            for (int x = 0; x < width(); x += kChecker) {
                const bool light = (x / kChecker + y / kChecker) % 2 == 0;
                painter.fillRect(x, y, kChecker, kChecker, QColor(light ? 0x909090 : 0x606060));
            }
        }
        const int half = width() / 2;
        painter.fillRect(0, 0, half, height(), Shown(mOld));
        painter.fillRect(half, 0, width() - half, height(), Shown(mNew));
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }

private:
    const PickerColor& mOld;
    const PickerColor& mNew;
};

} // namespace

QString ShortestText(float value)
{
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return QString::fromLatin1(text, static_cast<qsizetype>(result.ptr - text));
}

ColorPickerWindow::ColorPickerWindow(const PickerColor& color, Alpha alpha, QWidget* parent)
    : QDialog(parent), mColor(color), mOldColor(color)
{
    setWindowTitle(tr("Color"));
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(15, 15, 15, 15);
    grid->setSpacing(8);
    mArea = new ColorArea(this);
    mArea->OnPicked([this](const Hsv& hsv) {
        float red = 0.0F;
        float green = 0.0F;
        float blue = 0.0F;
        QColor::fromHsvF(std::min(hsv.hue, 1.0F), hsv.saturation, hsv.value).getRgbF(&red, &green, &blue);
        mColor.red = red;
        mColor.green = green;
        mColor.blue = blue;
        ShowFields(); // not the area, which would lose its hue for greys
    });
    grid->addWidget(mArea, 0, 0, static_cast<int>(kChannels) + 1, 1);
    const char* const names[kChannels] = {"Red", "Green", "Blue", "Alpha"};
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
        auto* const field = new QLineEdit(this);
        field->setAlignment(Qt::AlignRight);
        field->setMinimumWidth(110);
        field->setAccessibleName(tr(names[channel]));
        field->setToolTip(tr("Nominally 0 to 1; any number is taken."));
        auto* const label = new QLabel(tr(names[channel]) + QLatin1Char(':'), this);
        label->setBuddy(field);
        grid->addWidget(label, static_cast<int>(channel), 1, Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(field, static_cast<int>(channel), 2);
        connect(field, &QLineEdit::textEdited, this,
                [this, channel] { AtSeam([this, channel] { TakeField(channel); }); });
        connect(field, &QLineEdit::editingFinished, this, [this] { AtSeam([this] { ShowFields(); }); });
        const bool isHidden = alpha == Alpha::Kept && channel + 1 == kChannels;
        field->setHidden(isHidden);
        label->setHidden(isHidden);
        mFields[channel] = field;
    }
    mPatches = new Patches(mOldColor, mColor, this);
    grid->addWidget(mPatches, static_cast<int>(kChannels), 1, 1, 2);
    grid->setColumnStretch(0, 1);

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    mOk = new QPushButton(tr("OK"), this);
    mOk->setDefault(true);
    mCancel = new QPushButton(tr("Cancel"), this);
    mCancel->setAutoDefault(false);
    for (QPushButton* button : {mOk, mCancel}) {
        button->setMinimumWidth(96);
        buttons->addWidget(button);
    }
    connect(mOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(mCancel, &QPushButton::clicked, this, &QDialog::reject);
    grid->addLayout(buttons, static_cast<int>(kChannels) + 1, 0, 1, 3);
    ShowColor();
    mFields[0]->setFocus();
    mFields[0]->selectAll();
}

ColorPickerWindow::~ColorPickerWindow()
{
    // Fields lose the focus while Qt's base class destroys them, and must not call this object then.
    for (QLineEdit* const field : mFields) {
        field->disconnect(this);
    }
}

/// Text that is not a number, or too large a number, restores the channel; the field shows it again when it is
/// left.
void ColorPickerWindow::TakeField(std::size_t channel)
{
    constexpr double kLargest = std::numeric_limits<float>::max();
    const auto value = qelui::ParseNumber(mFields[channel]->text().toStdString());
    const bool isChannel = value && std::abs(*value) <= kLargest;
    mColor.*kMembers[channel] = isChannel ? static_cast<float>(*value) : mBeforeEdit.*kMembers[channel];
    ShowArea();
}

void ColorPickerWindow::ShowColor()
{
    ShowFields();
    ShowArea();
}

void ColorPickerWindow::ShowFields()
{
    mBeforeEdit = mColor;
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
        const QString text = ShortestText(mColor.*kMembers[channel]);
        if (mFields[channel]->text() != text) {
            mFields[channel]->setText(text);
        }
    }
    mPatches->update();
}

void ColorPickerWindow::ShowArea()
{
    Hsv hsv;
    Shown(mColor).getHsvF(&hsv.hue, &hsv.saturation, &hsv.value);
    hsv.hue = std::max(hsv.hue, 0.0F); // Qt says -1 for greys
    mArea->SetHsv(hsv);
    mPatches->update();
}

} // namespace kestrelqt
