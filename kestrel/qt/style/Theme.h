/// The two themes. They are neutral grey, because coloured surroundings change how the colours of a picture
/// look.
#pragma once

#include <kestrel/qelui/DrawSupplier.h>

#include <QColor>

class QApplication;

namespace kestrelqt {

/// The colours that windows are drawn in. Text has a contrast of at least 4.5:1 on every surface that it is
/// used on (WCAG 2.1, 1.4.3); `tests/ui-qt` measures this.
struct ThemeColors {
    QColor window;    ///< behind everything
    QColor card;      ///< groups
    QColor field;     ///< fields to type into or choose from
    QColor button;    ///< buttons that are not the default one
    QColor border;    ///< outlines of fields and cards
    QColor text;      ///< on all of the above
    QColor dimText;   ///< labels and headers
    QColor disabled;  ///< text of disabled controls
    QColor accent;    ///< default button, chosen items; carries white text
    QColor accentInk; ///< accent for text and lines: hot text, outline of the focus
};

[[nodiscard]] const ThemeColors& ColorsOf(qelui::Theme theme);

/// Sets the application's style, palette and font size. [ui-thread]
void ApplyTheme(QApplication& application, qelui::Theme theme);

/// The theme applied last, dark before the first.
[[nodiscard]] qelui::Theme AppliedTheme();

} // namespace kestrelqt
