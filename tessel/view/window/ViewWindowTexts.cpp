/// What the player's window says in words and measures beside the picture.

#include "Paths.h"
#include "ViewWindow.h"

#include <tessel/view/model/Inspector.h>

#include <QLineEdit>
#include <QToolButton>
#include <algorithm>
#include <string>

namespace tessel::view {

void ViewWindow::ShowMeasurements()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    const Pane& pane = mPanes[mActive];
    // While it plays, not every frame is counted: the scopes stay with the last one that was.
    if (!pane.shown || pane.shown->scopes || mTransport.Speed() == 0) {
        mScopes->Show(pane.shown ? pane.shown->scopes : nullptr);
    }
    if (pane.shown && mMeters) {
        const double perSecond = pane.clip->Scale().PerSecond();
        mMeters->Take(perSecond > 0 ? static_cast<double>(pane.shown->frame) / perSecond : 0.0,
                      pane.shown->peaksDb);
        const auto readings = mMeters->Readings();
        mMetersPanel->Show(pane.clip->ChannelNames(), {readings.begin(), readings.end()},
                           QString::fromStdString(pane.shown->identSegment));
    }
    Hover(mHoveredPane, mHovered);
}

void ViewWindow::ShowTexts()
{
    if (mActive < mPanes.size()) {
        ShowPosition();
        ShowState();
    }
}

void ViewWindow::ShowPosition()
{
    const Pane& pane = mPanes[mActive];
    const FrameScale scale = mPanes[0].clip->Scale();
    const std::int64_t frame = std::max<std::int64_t>(mShown, 0);
    const QString timecode = QString::fromStdString(TimecodeOf(scale, frame));
    mTimeline->SetFrame(frame);
    if (!mPosition->hasFocus()) {
        mPosition->setText(QString::number(frame));
    }
    mTimecode->Show(timecode);
    setWindowTitle(QString("%1, frame %2 of %3%4")
                       .arg(TextOfPath(pane.clip->File().filename()))
                       .arg(frame)
                       .arg(scale.count)
                       .arg(timecode.isEmpty() ? "" : ", " + timecode));
    const bool isPlaying = mTransport.Speed() != 0;
    mPlayButton->setText(isPlaying ? QStringLiteral("\u25A0") : QStringLiteral("\u25B6"));
    mPlayButton->setAccessibleName(isPlaying ? "Stop (Space)" : "Play (Space)");
}

void ViewWindow::ShowState()
{
    const Pane& pane = mPanes[mActive];
    QStringList playing;
    constexpr const char* kFieldNames[] = {"", "upper field", "lower field", "one field after the other"};
    if (mFieldView != FieldView::Woven) {
        playing << kFieldNames[static_cast<int>(mFieldView)];
    }
    playing << (mZoom.pixelScale == 0 ? QString("fitted") : QString("code pixels %1:1").arg(mZoom.pixelScale));
    if (pane.shown && pane.shown->faults) {
        const scopes::CodeFaults& faults = *pane.shown->faults;
        playing << QString("reserved %1, out of range %2, out of gamut %3 pixels")
                       .arg(faults.reserved)
                       .arg(faults.outsideRange)
                       .arg(faults.outsideGamut);
    }
    if (mTransport.Speed() != 0) {
        playing << QString("speed %1").arg(mTransport.Speed());
    }
    if (mTransport.Shown() > 0) {
        playing << QString::fromStdString(PlayingText());
    }
    if (!mSound.State().empty()) {
        playing << QString::fromStdString(mSound.State());
    }
    playing << QString::fromStdString(pane.clip->Description());
    mState->Show(playing.join("  |  "));
    mState->setToolTip(mState->Text());
}

void ViewWindow::Hover(std::size_t index, std::optional<PixelPlace> place)
{
    mHovered = place;
    mHoveredPane = index;
    if (!place || index >= mPanes.size() || !mPanes[index].shown) {
        mInspector->Show({});
        return;
    }
    const exporting::FrameView& pixels = mPanes[index].shown->pixels;
    if (place->x < pixels.width && place->y < pixels.height) {
        mInspector->Show(QString::fromStdString(TextOf(ReadPixel(pixels, place->x, place->y))));
    }
}

std::string ViewWindow::PlayingText() const
{
    return std::to_string(mTransport.Shown()) + " frames shown, " + std::to_string(mTransport.Dropped()) +
           " dropped";
}

} // namespace tessel::view
