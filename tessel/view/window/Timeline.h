/// The clip's time from left to right, with marks.
#pragma once

#include <QSlider>
#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

namespace tessel::view {

/// Frames that something is said about.
struct TimelineMark {
    std::int64_t first = 0;
    std::int64_t last = 0; ///< included
    QString text;
};

/// [ui-thread]
class Timeline final : public QSlider {
public:
    explicit Timeline(QWidget* parent = nullptr);

    void SetFrameCount(std::int64_t count);
    /// Does not call `onMoved`.
    void SetFrame(std::int64_t frame);
    void SetMarks(std::vector<TimelineMark> marks);

    std::function<void(std::int64_t)> onMoved; ///< a person went to a frame

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] double PlaceOf(std::int64_t frame) const;
    [[nodiscard]] std::int64_t FrameAt(double x) const;

    std::int64_t mCount = 1;
    std::int64_t mFrame = 0;
    std::vector<TimelineMark> mMarks;
};

} // namespace tessel::view
