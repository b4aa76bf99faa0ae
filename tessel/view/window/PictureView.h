/// A picture in a window: exact pixels, fitted in its true shape or as code pixels.
#pragma once

#include <tessel/view/model/FieldView.h>
#include <tessel/view/model/Fitting.h>

#include <QImage>
#include <QPointF>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

namespace tessel::view {

/// What one pane shows. The images' pixels belong to `owner`.
struct PaneContent {
    QImage image;     ///< all rows, or every so many of them; empty: nothing to show
    QImage overlay;   ///< of the same size, with alpha; empty: none
    QImage wiped;     ///< shown right of the wipe's line; empty: no wipe
    PictureSize size; ///< of the picture that the image shows
    QString title;    ///< above the picture
    QString trouble;  ///< instead of a picture
    std::shared_ptr<const void> owner;
};

/// Shows content with nearest neighbours when enlarged. Where it is reduced, a picture that stands still is
/// smoothed. [ui-thread]
class PictureView final : public QWidget {
public:
    explicit PictureView(QWidget* parent = nullptr);

    void Show(PaneContent content);
    void SetRows(FieldView view, FirstField firstField, bool isSecondField);
    void SetZoom(const Zoom& zoom);
    void SetMoving(bool isMoving);
    /// Marks the pane that scopes and meters belong to.
    void SetActive(bool isActive);
    /// Rows of the screen that the picture takes, also those out of sight.
    [[nodiscard]] int ScreenRows() const;
    [[nodiscard]] const PaneContent& Content() const noexcept { return mContent; }
    /// Where the wipe's line is, from 0 to 1 of the picture's width.
    void SetWipe(double place);

    std::function<void(std::optional<PixelPlace>)> onHover; ///< the pointer moved
    std::function<void()> onPressed;
    std::function<void(const Zoom&)> onPanned;
    std::function<void(int steps)> onWheel;
    std::function<void(double)> onWiped;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    [[nodiscard]] Area WindowArea() const;
    [[nodiscard]] Area Place() const;
    void Draw(QPainter& painter, const QImage& image, const Area& place) const;

    PaneContent mContent;
    Zoom mZoom;
    FieldView mFieldView = FieldView::Woven;
    FirstField mFirstField = FirstField::Upper;
    bool mIsSecondField = false;
    bool mIsMoving = false;
    bool mIsActive = false;
    double mWipe = 0.5;
    QPointF mDragFrom;
    Zoom mZoomAtDrag;
};

} // namespace tessel::view
