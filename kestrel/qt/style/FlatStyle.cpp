#include "FlatStyle.h"

#include <QPainter>
#include <QStyleOption>

namespace kestrelqt {

namespace {

constexpr qreal kRadius = 3.0;
constexpr int kFieldHeight = 26;

/// The outline is twice as thick around a control with the focus.
QPen OutlineOf(const QStyleOption& option)
{
    const bool focused = option.state.testFlag(QStyle::State_HasFocus);
    return {option.palette.color(focused ? QPalette::Link : QPalette::Mid), focused ? 2.0 : 1.0};
}

/// A rounded box whose outline lies on the pixel grid.
void DrawBox(QPainter* painter, const QRect& rect, const QBrush& fill, const QPen& outline)
{
    const qreal inset = outline.widthF() / 2;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(fill);
    painter->setPen(outline);
    painter->drawRoundedRect(QRectF(rect).adjusted(inset, inset, -inset, -inset), kRadius, kRadius);
    painter->restore();
}

void DrawButton(const QStyleOptionButton& option, QPainter* painter)
{
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool isDefault = option.features.testFlag(QStyleOptionButton::DefaultButton) && enabled;
    QColor fill = option.palette.color(isDefault ? QPalette::Highlight : QPalette::Button);
    if (option.state.testFlag(QStyle::State_Sunken)) {
        fill = fill.darker(118);
    } else if (option.state.testFlag(QStyle::State_MouseOver) && enabled) {
        fill = isDefault ? fill.darker(108) : fill.lighter(108);
    }
    QPen outline = OutlineOf(option);
    if (isDefault) {
        const bool focused = option.state.testFlag(QStyle::State_HasFocus);
        outline.setColor(focused ? option.palette.color(QPalette::WindowText) : fill);
    }
    DrawBox(painter, option.rect, enabled ? QBrush(fill) : QBrush(Qt::NoBrush), outline);
}

/// Check marks and radio dots: a filled accent shape with a white mark when on.
void DrawIndicator(const QStyleOption& option, QPainter* painter, bool round)
{
    const bool on = option.state.testFlag(QStyle::State_On);
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const QColor accent = option.palette.color(enabled ? QPalette::Highlight : QPalette::Mid);
    const QRectF box = QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -1.5);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(on ? QPen(accent) : QPen(OutlineOf(option).color()));
    painter->setBrush(on ? accent : option.palette.color(QPalette::Base));
    if (round) {
        painter->drawEllipse(box);
    } else {
        painter->drawRoundedRect(box, kRadius - 1, kRadius - 1);
    }
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(option.palette.color(QPalette::WindowText));
        const QRectF ring = box.adjusted(-1, -1, 1, 1);
        round ? painter->drawEllipse(ring) : painter->drawRoundedRect(ring, kRadius, kRadius);
    }
    if (on && round) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(Qt::white);
        const qreal inset = box.width() * 0.3;
        painter->drawEllipse(box.adjusted(inset, inset, -inset, -inset));
    } else if (on) {
        QPen pen(Qt::white, box.width() * 0.15, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        const auto at = [&box](qreal x, qreal y) {
            return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
        };
        painter->drawPolyline(QPolygonF{at(0.22, 0.52), at(0.43, 0.74), at(0.79, 0.29)});
    }
    painter->restore();
}

void DrawChevron(const QRect& rect, const QColor& color, QPainter* painter)
{
    const QPointF center = QRectF(rect).center();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPolyline(QPolygonF{center + QPointF(-4, -2), center + QPointF(0, 2), center + QPointF(4, -2)});
    painter->restore();
}

} // namespace

FlatStyle::FlatStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void FlatStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            DrawButton(*button, painter);
            return;
        }
        break;
    case PE_FrameDefaultButton:
    case PE_FrameFocusRect:
        return; // the outline shows the focus
    case PE_PanelLineEdit:
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame != nullptr) {
            if (frame->lineWidth > 0) {
                DrawBox(painter, option->rect, option->palette.brush(QPalette::Base), OutlineOf(*option));
            }
            return;
        }
        break;
    case PE_Frame: // of lists, including those of popups
        painter->save();
        painter->setPen(option->palette.color(QPalette::Mid));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        return;
    case PE_IndicatorCheckBox:
        DrawIndicator(*option, painter, /*round=*/false);
        return;
    case PE_IndicatorRadioButton:
        DrawIndicator(*option, painter, /*round=*/true);
        return;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void FlatStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const
{
    if (element == CE_PushButtonLabel) {
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            QStyleOptionButton label = *button;
            if (label.features.testFlag(QStyleOptionButton::DefaultButton) &&
                label.state.testFlag(State_Enabled)) {
                label.palette.setColor(QPalette::ButtonText, Qt::white); // on the accent
            }
            QProxyStyle::drawControl(element, &label, painter, widget);
            return;
        }
    }
    if (element == CE_ComboBoxLabel) {
        if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
            QStyleOptionComboBox label = *combo;
            const QRect room = subControlRect(CC_ComboBox, combo, SC_ComboBoxEditField, widget);
            // The names of formats differ at both ends.
            label.currentText =
                combo->fontMetrics.elidedText(combo->currentText, Qt::ElideMiddle, room.width() - 2);
            QProxyStyle::drawControl(element, &label, painter, widget);
            return;
        }
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void FlatStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                   const QWidget* widget) const
{
    if (control == CC_ComboBox) {
        if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
            const bool enabled = combo->state.testFlag(State_Enabled);
            DrawBox(painter, combo->rect, enabled ? combo->palette.brush(QPalette::Base) : QBrush(Qt::NoBrush),
                    OutlineOf(*combo));
            const QRect arrow = subControlRect(CC_ComboBox, combo, SC_ComboBoxArrow, widget);
            DrawChevron(arrow, combo->palette.color(QPalette::Text), painter);
            return;
        }
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

int FlatStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return 17;
    case PM_ButtonDefaultIndicator:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int FlatStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returnData) const
{
    switch (hint) {
    case SH_ComboBox_Popup: // a list below the field, with search by typing
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    case SH_UnderlineShortcut:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

QSize FlatStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                  const QWidget* widget) const
{
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (type == CT_LineEdit || type == CT_ComboBox || type == CT_PushButton) {
        size.setHeight(qMax(size.height(), kFieldHeight));
    }
    if (type == CT_ItemViewItem) {
        size.rheight() += 4;
    }
    if (type == CT_PushButton) {
        size.rwidth() += 10;
    }
    return size;
}

} // namespace kestrelqt
