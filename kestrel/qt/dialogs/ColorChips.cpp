#include "ColorChips.h"

#include <kestrel/qelui/controls/UI_Number.h>

#include <QAbstractButton>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <algorithm>

namespace kestrelqt {

namespace {

constexpr std::array<const char*, 3> kChannelLabels = {"Red:", "Green:", "Blue:"};

/// The channels of a colour's column; nothing where the group is not one.
std::vector<const qelui::UI_NumberView*> ChannelsOf(const qelui::UI_Group& group)
{
    const auto& children = group.Children();
    if (children.size() <= kChannelLabels.size() || children.front()->Kind() != qelui::ControlKind::Button) {
        return {};
    }
    std::vector<const qelui::UI_NumberView*> channels;
    for (std::size_t channel = 0; channel < kChannelLabels.size(); ++channel) {
        const auto* const number = dynamic_cast<const qelui::UI_NumberView*>(children[channel + 1].get());
        if (number == nullptr || number->Label() != kChannelLabels[channel]) {
            return {};
        }
        channels.push_back(number);
    }
    return channels;
}

void Paint(QAbstractButton& button, const std::vector<const qelui::UI_NumberView*>& channels)
{
    constexpr QSize kChip(22, 14);
    constexpr QSize kIcon(28, 14); // with a gap before the caption
    const auto part = [&channels](std::size_t channel) {
        const double value = channels[channel]->GetValue();
        return value > 0.0 ? static_cast<float>(std::min(value, 1.0)) : 0.0F; // also for what is no number
    };
    const qreal scale = button.devicePixelRatioF();
    QPixmap chip(kIcon * scale);
    chip.setDevicePixelRatio(scale);
    chip.fill(Qt::transparent);
    QPainter painter(&chip);
    painter.fillRect(QRect(QPoint(0, 0), kChip), QColor::fromRgbF(part(0), part(1), part(2)));
    painter.setPen(button.palette().color(QPalette::WindowText));
    painter.drawRect(QRect(QPoint(0, 0), kChip).adjusted(0, 0, -1, -1));
    painter.end();
    QIcon icon(chip);
    icon.addPixmap(chip, QIcon::Disabled); // colours stay as they are
    button.setIcon(icon);
    button.setIconSize(kIcon);
}

} // namespace

void ShowColorChips(const qelui::UI_Group& group, DialogWidgets& widgets)
{
    const auto channels = ChannelsOf(group);
    if (channels.empty()) {
        return;
    }
    const auto button = widgets.controls.find(group.Children().front().get());
    if (button != widgets.controls.end()) {
        Paint(*static_cast<QAbstractButton*>(button->second->Widget()), channels);
        for (const auto* const channel : channels) {
            widgets.chips[channel] = &group;
        }
    }
}

bool IsColorButton(const qelui::UI_ControlView& control)
{
    const qelui::UI_Group* const group = control.Parent();
    return group != nullptr && !ChannelsOf(*group).empty() && group->Children().front().get() == &control;
}

void FollowColorChip(const qelui::UI_ControlView& control, const DialogWidgets& widgets)
{
    if (const auto group = widgets.chips.find(&control); group != widgets.chips.end()) {
        const auto button = widgets.controls.find(group->second->Children().front().get());
        Paint(*static_cast<QAbstractButton*>(button->second->Widget()), ChannelsOf(*group->second));
    }
}

} // namespace kestrelqt
