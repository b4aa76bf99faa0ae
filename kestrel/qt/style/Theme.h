/// The two themes: neutral greys, so that no colour on screen tints the judgement of a colour in the picture.
#pragma once

#include <kestrel/qelui/DrawSupplier.h>

#include <QColor>

class QApplication;

namespace kestrelqt {

/// The colours that windows are drawn in. Every text stands at 4.5:1 or more on every surface it is used on
/// (WCAG 2.1, 1.4.3); `tests/ui-qt` measures it.
struct ThemeColors {
    QColor window;    ///< behind everything
    QColor card;      ///< groups
    QColor field;     ///< what one types into or chooses from
    QColor button;    ///< buttons that are not the default one
    QColor border;    ///< outlines of fields and cards
    QColor text;      ///< on all of the above
    QColor dimText;   ///< labels and headers
    QColor disabled;  ///< text of what cannot be used
    QColor accent;    ///< default button, chosen items; carries white text
    QColor accentInk; ///< the accent as ink: hot text, outline of what has the focus
};

[[nodiscard]] const ThemeColors& ColorsOf(qelui::Theme theme);

/// Dresses the application: style, palette and font size. [ui-thread]
void ApplyTheme(QApplication& application, qelui::Theme theme);

/// The theme applied last, dark before the first.
[[nodiscard]] qelui::Theme AppliedTheme();

} // namespace kestrelqt
