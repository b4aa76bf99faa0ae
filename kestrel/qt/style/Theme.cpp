#include "Theme.h"

#include "FlatStyle.h"

#include <QApplication>
#include <QPalette>
#include <QToolTip>

namespace kestrelqt {

namespace {

qelui::Theme& Applied()
{
    static qelui::Theme theme = qelui::Theme::Dark;
    return theme;
}

} // namespace

const ThemeColors& ColorsOf(qelui::Theme theme)
{
    static const ThemeColors kDark{.window = QColor(0x1E1E1E),
                                   .card = QColor(0x272727),
                                   .field = QColor(0x191919),
                                   .button = QColor(0x383838),
                                   .border = QColor(0x474747),
                                   .text = QColor(0xE6E6E6),
                                   .dimText = QColor(0xB4B4B4),
                                   .disabled = QColor(0x7C7C7C),
                                   .accent = QColor(0x1F6FC4),
                                   .accentInk = QColor(0x6FB1F2)};
    static const ThemeColors kLight{.window = QColor(0xEFEFEF),
                                    .card = QColor(0xF9F9F9),
                                    .field = QColor(0xFFFFFF),
                                    .button = QColor(0xE4E4E4),
                                    .border = QColor(0xBDBDBD),
                                    .text = QColor(0x1B1B1B),
                                    .dimText = QColor(0x4F4F4F),
                                    .disabled = QColor(0x858585),
                                    .accent = QColor(0x1F6FC4),
                                    .accentInk = QColor(0x155A9F)};
    return theme == qelui::Theme::Light ? kLight : kDark;
}

void ApplyTheme(QApplication& application, qelui::Theme theme)
{
    const ThemeColors& colors = ColorsOf(theme);
    QPalette palette;
    palette.setColor(QPalette::Window, colors.window);
    palette.setColor(QPalette::WindowText, colors.text);
    palette.setColor(QPalette::Base, colors.field);
    palette.setColor(QPalette::AlternateBase, colors.card);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(QPalette::PlaceholderText, colors.dimText);
    palette.setColor(QPalette::Button, colors.button);
    palette.setColor(QPalette::ButtonText, colors.text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Mid, colors.border);
    palette.setColor(QPalette::Dark, colors.border.darker(130));
    palette.setColor(QPalette::Light, colors.button.lighter(115));
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, colors.accentInk);
    palette.setColor(QPalette::ToolTipBase, colors.card);
    palette.setColor(QPalette::ToolTipText, colors.text);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors.disabled);
    }
    palette.setColor(QPalette::Disabled, QPalette::Base, colors.card);
    if (dynamic_cast<FlatStyle*>(application.style()) == nullptr) {
        application.setStyle(new FlatStyle); // the application owns its style
    }
    application.setPalette(palette);
    QToolTip::setPalette(palette);
    Applied() = theme;
}

qelui::Theme AppliedTheme()
{
    return Applied();
}

} // namespace kestrelqt
