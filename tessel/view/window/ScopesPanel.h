/// Waveform, parade, vectorscope and histogram, drawn from their counts.
#pragma once

#include <tessel/view/model/ShownFrame.h>

#include <QImage>
#include <QWidget>
#include <memory>

namespace tessel::view {

/// [ui-thread]
class ScopesPanel final : public QWidget {
public:
    explicit ScopesPanel(QWidget* parent = nullptr);

    /// Null: nothing is drawn but the scales.
    void Show(std::shared_ptr<const ScopeCounts> counts);

    [[nodiscard]] QSize sizeHint() const override { return {400, 720}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void DrawLevels(QPainter& painter, const QRectF& area) const;
    void DrawWaveform(QPainter& painter, const QRectF& area) const;
    void DrawParade(QPainter& painter, const QRectF& area) const;
    void DrawVectors(QPainter& painter, const QRectF& area) const;
    void DrawHistogram(QPainter& painter, const QRectF& area) const;

    std::shared_ptr<const ScopeCounts> mCounts;
};

} // namespace tessel::view
