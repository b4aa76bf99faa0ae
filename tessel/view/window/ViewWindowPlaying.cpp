/// Which frame the player's window shows when, and the sound beside it.

#include "Images.h"
#include "Paths.h"
#include "ViewWindow.h"

#include <QDockWidget>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tessel::view {
namespace {

// Frames that are made before they are due bridge moments in which the machine is busy; large ones take memory.
constexpr int kLeastAhead = 3;
constexpr int kUsualAhead = 12;
constexpr std::int64_t kAheadBytes = 256 << 20;
constexpr int kMostLate = 50;          // frames; what is later is not shown any more
constexpr double kSoundSlack = 0.3;    // seconds that sound may be off before it is started anew
constexpr double kScopeSeconds = 0.08; // between frames with scopes while it plays
constexpr int kScopeRows = 270;        // of a frame that are counted then, at least where it has them

} // namespace

std::int64_t ViewWindow::FrameIn(const Pane& pane, std::int64_t frame) const
{
    return std::min(frame, pane.clip->Scale().count - 1);
}

FrameWish ViewWindow::CurrentWish() const
{
    FrameWish wish;
    wish.scopes = mScopesDock->isVisible();
    wish.codeCheck = mShowsFaults;
    // Some rows tell as much of a moving picture, in a fraction of the time.
    const int height = mPanes.empty() ? 0 : mPanes[0].clip->Facts().height;
    wish.scopeRowStep = mTransport.Speed() != 0 ? std::max(height / kScopeRows, 1) : 1;
    wish.secondsBetweenScopes = mTransport.Speed() != 0 ? kScopeSeconds : 0;
    wish.screenRowStep = ScreenRowStep();
    return wish;
}

int ViewWindow::ScreenRowStep() const
{
    // Field views and pixels in their own size need the rows as they are.
    if (mTransport.Speed() == 0 || mFieldView != FieldView::Woven || mZoom.pixelScale > 0 || mIsWipe) {
        return 1;
    }
    int step = std::numeric_limits<int>::max();
    for (const Pane& pane : mPanes) {
        const int rows = pane.view->Content().size.height > 0 ? pane.view->ScreenRows() : 0;
        step = std::min(step, rows > 0 ? pane.clip->Facts().height / rows : 1);
    }
    return std::max(step, 1);
}

int ViewWindow::FramesAhead() const
{
    std::int64_t bytes = 1;
    for (const Pane& pane : mPanes) {
        constexpr std::int64_t kPixelBytes = 8; // about: as painted, and for the screen
        bytes += kPixelBytes * pane.clip->Facts().width * pane.clip->Facts().height;
    }
    return static_cast<int>(std::clamp<std::int64_t>(kAheadBytes / bytes, kLeastAhead, kUsualAhead));
}

void ViewWindow::WantAround(std::int64_t due)
{
    std::vector<std::int64_t> frames;
    std::vector<std::int64_t> keep;
    if (mTransport.Speed() != 0) {
        MakingPace pace{.seconds = 0, .threads = ThreadsPerPane()};
        for (const Pane& pane : mPanes) {
            pace.seconds = std::max(pace.seconds, pane.ahead->SecondsToMake());
        }
        FramePlan plan = PlanFrames(mTransport, due, pace, FramesAhead());
        frames = std::move(plan.frames);
        keep = std::move(plan.keep);
    } else {
        frames.push_back(due);
        // Whoever steps goes to a neighbour next.
        for (const std::int64_t neighbour : {due + 1, due - 1}) {
            if (neighbour >= 0 && neighbour < mPanes[0].clip->Scale().count) {
                frames.push_back(neighbour);
            }
        }
    }
    mWish = CurrentWish();
    for (const Pane& pane : mPanes) {
        const auto own = [&](const std::vector<std::int64_t>& all) {
            std::vector<std::int64_t> clamped = all;
            for (std::int64_t& frame : clamped) {
                frame = FrameIn(pane, frame);
            }
            return clamped;
        };
        pane.ahead->Want(own(frames), mWish, own(keep));
    }
}

bool ViewWindow::IsReady(std::int64_t frame) const
{
    return std::all_of(mPanes.begin(), mPanes.end(), [this, frame](const Pane& pane) {
        const std::int64_t own = FrameIn(pane, frame);
        return pane.ahead->Ready(own) != nullptr || pane.ahead->Failure(own).has_value();
    });
}

bool ViewWindow::IsShown(std::int64_t frame) const
{
    return mShown == frame && std::all_of(mPanes.begin(), mPanes.end(), [this, frame](const Pane& pane) {
               return pane.shown == pane.ahead->Ready(FrameIn(pane, frame));
           });
}

bool ViewWindow::IsSettled() const
{
    return mTransport.Speed() == 0 && mDue >= 0 && IsReady(mDue) && IsShown(mDue) && mWish == CurrentWish() &&
           (!mComparison || (mComparison->IsVerified() && mCompared && mCompared->frame == mDue &&
                             mCompared->gain == mGain && mCompared == mComparison->Newest()));
}

void ViewWindow::Tick()
{
    if (mPanes.empty()) {
        return;
    }
    const std::int64_t due = mTransport.Due(Now());
    mDue = due;
    if (mTransport.Speed() != 0 && mTransport.CurrentPace() == Pace::RealTime) {
        ShowNewest(due);
    }
    WantAround(due);
    if (IsReady(due) && !IsShown(due)) {
        ShowFrame(due);
    }
    ShowCompared();
    const bool isSecond = mTransport.IsInSecondHalf(Now());
    for (const Pane& pane : mPanes) {
        pane.view->SetRows(mFieldView, pane.clip->First(), isSecond);
        pane.view->SetMoving(mTransport.Speed() != 0);
    }
    for (PictureView* const view : {mMovieView, mDifferenceView}) {
        if (view != nullptr) {
            view->SetRows(mFieldView, mPanes[0].clip->First(), isSecond);
            view->SetMoving(mTransport.Speed() != 0);
        }
    }
    SyncSound();
    if (mTransport.Speed() != 0 && !mTimer.isActive()) {
        mTimer.start();
    } else if (mTransport.Speed() == 0 && mTimer.isActive()) {
        mTimer.stop();
        ShowTexts();
        // What was seen while it played may have been counted from some rows alone.
        QMetaObject::invokeMethod(
            this, [this] { Tick(); }, Qt::QueuedConnection);
    }
    if (onSettled && IsSettled()) {
        onSettled();
    }
}

void ViewWindow::ShowNewest(std::int64_t due)
{
    // The frame that is late least, if it is newer than what is shown, and ready in all panes.
    std::int64_t newest = -1;
    for (const std::int64_t frame : mPanes[0].ahead->AllReady()) {
        const std::int64_t late = mTransport.Lateness(frame, due);
        const bool isNewer = mShown < 0 || late < mTransport.Lateness(mShown, due);
        if (isNewer && IsReady(frame) && (newest < 0 || late < mTransport.Lateness(newest, due))) {
            newest = frame;
        }
    }
    if (newest >= 0 && mTransport.Lateness(newest, due) < kMostLate) {
        ShowFrame(newest);
    }
}

void ViewWindow::ShowFrame(std::int64_t frame)
{
    for (Pane& pane : mPanes) {
        ShowPane(pane, FrameIn(pane, frame));
    }
    mShown = frame;
    mTransport.Showed(frame, Now());
    ShowMeasurements();
    ShowTexts();
}

void ViewWindow::ShowPane(Pane& pane, std::int64_t frame)
{
    pane.shown = pane.ahead->Ready(frame);
    PaneContent content;
    content.size = pane.clip->Size();
    content.title = TextOfPath(pane.clip->File().filename()) + QString("   frame %1").arg(frame);
    if (pane.shown) {
        content.image = ImageOf(pane.shown->screen);
        content.overlay = ImageWithAlphaOf(pane.shown->marks);
        content.owner = pane.shown;
    } else {
        content.trouble = QString::fromStdString(pane.ahead->Failure(frame).value_or(""));
    }
    if (mComparison && mIsWipe && &pane == mPanes.data()) {
        content.wiped = pane.view->Content().wiped; // until the movie's own picture is there
    }
    pane.view->Show(std::move(content));
}

void ViewWindow::SyncSound()
{
    const bool sounds = mTransport.Speed() == 1 && mTransport.CurrentPace() == Pace::RealTime;
    if (!sounds) {
        if (mIsSoundOn) {
            mSound.Stop();
            mIsSoundOn = false;
        }
        return;
    }
    const Pane& pane = mPanes[mActive];
    const double perSecond = pane.clip->Scale().PerSecond();
    const double seconds = perSecond > 0 ? static_cast<double>(mShown) / perSecond : 0.0;
    const SoundEnd end = mTransport.IsLooping() ? SoundEnd::Loop : SoundEnd::Silence;
    // From the first frame that was shown while it plays.
    if (!mIsSoundOn && mTransport.Shown() > 0) {
        mSound.Start(pane.clip, seconds, end);
        mIsSoundOn = true;
        mSoundCheckedAt = Now();
        mTransport.Go(mShown, Now()); // to open a device takes time
    } else if (mIsSoundOn && Now() - mSoundCheckedAt > 1.0) {
        mSoundCheckedAt = Now();
        const double position = mSound.Position();
        if (position >= 0 && std::abs(position - seconds) > kSoundSlack) {
            mSound.Start(pane.clip, seconds, end);
        }
    }
}

void ViewWindow::PlayForwards()
{
    mTransport.Stop(Now());
    mTransport.SetLooping(true);
    mTransport.Forward(Now());
    Tick();
}

void ViewWindow::StopPlaying()
{
    mTransport.Stop(Now());
    Tick();
}

} // namespace tessel::view
