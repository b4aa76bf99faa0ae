/// A dialog's status line as a widget.
#pragma once

#include <kestrel/qelui/dialogs/StatusLine.h>

#include <QLabel>

namespace kestrelqt {

/// Two lines at the foot of the window: the report above the explanation, or the explanation on both. What does
/// not fit is cut in its middle; the tooltip has all of it.
class StatusBar final : public QLabel {
public:
    explicit StatusBar(QWidget* parent);

    void Follow(const qelui::StatusLine& status);
    /// The report where there is one, else the explanation.
    [[nodiscard]] const QString& Shown() const noexcept { return mReport.isEmpty() ? mExplanation : mReport; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString mReport;
    QString mExplanation;
};

} // namespace kestrelqt
