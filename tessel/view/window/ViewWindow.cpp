#include "ViewWindow.h"

#include "Images.h"
#include "Paths.h"

#include <tessel/export/ExportError.h>
#include <tessel/view/model/Inspector.h>

#include <QDockWidget>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <string>
#include <thread>
#include <utility>

namespace tessel::view {
namespace {

constexpr int kAhead = 3;           // frames that are made before they are due
constexpr int kMostAhead = 50;      // that are begun earlier because they take long
constexpr int kTickMs = 4;          // while it plays
constexpr double kSoundSlack = 0.3; // seconds that sound may be off before it is started anew

} // namespace

ViewWindow::ViewWindow(const WindowRequest& request) : mImporter(request.importer), mPlugin(request.plugin)
{
    mClock.start();
    setAcceptDrops(true);
    setWindowTitle("Tessel");
    BuildPanels();
    BuildMenus();
    mTimer.setTimerType(Qt::PreciseTimer);
    mTimer.setInterval(kTickMs);
    QObject::connect(&mTimer, &QTimer::timeout, this, [this] { Tick(); });
    QObject::connect(&mWatcher, &QFileSystemWatcher::fileChanged, this, [this](const QString& file) {
        // Whoever writes a file may not be done yet; a file that is replaced has to be watched anew.
        QTimer::singleShot(150, this, [this, file] { ReloadChanged(file); });
    });
    OpenClips(request.clips);
    if (!request.against.empty()) {
        Compare(request.against);
    }
    if (!request.frame.empty() && !mPanes.empty()) {
        mTransport.Go(FrameNamed(mPanes[0].clip->Scale(), request.frame, 0), Now());
    }
}

ViewWindow::~ViewWindow()
{
    mSound.Stop();
    mComparison.reset(); // threads of which call back, as those of the panes
    mPanes.clear();
}

ViewWindow::Pane ViewWindow::MakePane(const std::filesystem::path& file)
{
    Pane pane;
    pane.clip = std::make_shared<const ViewedClip>(mImporter, file);
    const int threads = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 4);
    pane.ahead = std::make_unique<FrameAhead>(pane.clip, threads, [this] {
        QMetaObject::invokeMethod(
            this, [this] { Tick(); }, Qt::QueuedConnection);
    });
    return pane;
}

void ViewWindow::OpenClips(const std::vector<std::filesystem::path>& files)
{
    std::vector<Pane> panes;
    for (const std::filesystem::path& file : files) {
        panes.push_back(MakePane(file));
    }
    StopComparing();
    for (const Pane& pane : mPanes) {
        delete pane.view;
    }
    if (!mWatcher.files().isEmpty()) {
        mWatcher.removePaths(mWatcher.files());
    }
    mPanes = std::move(panes);
    delete std::exchange(mEmpty, nullptr);
    for (std::size_t i = 0; i < mPanes.size(); ++i) {
        auto* const picture = new PictureView(mPictures);
        mPanes[i].view = picture;
        picture->onPressed = [this, i] { Activate(i); };
        picture->onHover = [this, i](std::optional<PixelPlace> place) { Hover(i, place); };
        picture->onPanned = [this](const Zoom& zoom) { ChangeZoom(zoom); };
        picture->onWheel = [this](int steps) {
            ChangeZoom({std::clamp(mZoom.pixelScale + steps, 0, 64), mZoom.panX, mZoom.panY});
        };
        picture->SetZoom(mZoom);
        mPictures->addWidget(picture);
        mWatcher.addPath(NameOf(mPanes[i].clip->File()));
    }
    if (mPanes.empty()) {
        mEmpty = new PictureView(mPictures);
        PaneContent content;
        content.trouble = "Drop clips here, or press Ctrl+O";
        mEmpty->Show(std::move(content));
        return;
    }
    TakeScale();
    Activate(0);
    Tick();
}

void ViewWindow::TakeScale()
{
    const FrameScale scale = mPanes[0].clip->Scale();
    mTransport.SetClip(scale.count, scale.PerSecond(), Now());
    mTimeline->SetFrameCount(scale.count);
    mShown = -1;
}

void ViewWindow::Activate(std::size_t pane)
{
    mActive = std::min(pane, mPanes.empty() ? 0 : mPanes.size() - 1);
    for (std::size_t i = 0; i < mPanes.size(); ++i) {
        mPanes[i].view->SetActive(mPanes.size() > 1 && i == mActive);
    }
    mMeters.reset();
    if (!mPanes.empty()) {
        mMeters.emplace(mPanes[mActive].clip->ChannelNames().size());
    }
    ShowMeasurements();
    ShowTexts();
}

std::int64_t ViewWindow::FrameIn(const Pane& pane, std::int64_t frame) const
{
    return std::min(frame, pane.clip->Scale().count - 1);
}

FrameWish ViewWindow::CurrentWish() const
{
    FrameWish wish;
    wish.scopes = mScopesDock->isVisible();
    wish.codeCheck = mShowsFaults;
    // Every fourth row tells as much of a moving picture, in a quarter of the time.
    const bool isLarge = !mPanes.empty() && mPanes[0].clip->Facts().height >= 480;
    wish.scopeRowStep = mTransport.Speed() != 0 && isLarge ? 4 : 1;
    return wish;
}

void ViewWindow::WantAround(std::int64_t due)
{
    std::vector<std::int64_t> frames;
    std::vector<std::int64_t> keep;
    if (mTransport.Speed() != 0) {
        // What takes longer to make than it is shown has to be begun that much earlier.
        double seconds = 0;
        for (const Pane& pane : mPanes) {
            seconds = std::max(seconds, pane.ahead->SecondsToMake());
        }
        const bool isTimed = mTransport.CurrentPace() == Pace::RealTime;
        const int lead = isTimed ? std::min(static_cast<int>(mTransport.FramesIn(seconds)), kMostAhead) : 0;
        for (int i = 0; i <= lead + kAhead; ++i) {
            const std::int64_t next = mTransport.Following(due, i);
            if (next >= 0) {
                (i < lead ? keep : frames).push_back(next);
            }
        }
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
            std::vector<std::int64_t> clamped;
            for (const std::int64_t frame : all) {
                clamped.push_back(FrameIn(pane, frame));
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
    if (newest >= 0 && mTransport.Lateness(newest, due) < kMostAhead) {
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
        if (pane.shown->faults) {
            content.overlay = OverlayOf(*pane.shown->faults);
        }
        content.owner = pane.shown;
    } else {
        content.trouble = QString::fromStdString(pane.ahead->Failure(frame).value_or(""));
    }
    if (mComparison && mIsWipe && &pane == mPanes.data()) {
        content.wiped = pane.view->Content().wiped; // until the movie's own picture is there
    }
    pane.view->Show(std::move(content));
}

void ViewWindow::ShowMeasurements()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    const Pane& pane = mPanes[mActive];
    mScopes->Show(pane.shown ? pane.shown->scopes : nullptr);
    if (pane.shown && mMeters) {
        const double perSecond = pane.clip->Scale().PerSecond();
        mMeters->Take(perSecond > 0 ? static_cast<double>(pane.shown->frame) / perSecond : 0.0,
                      pane.shown->peaksDb);
        const auto readings = mMeters->Readings();
        mMetersPanel->Show(pane.clip->ChannelNames(), {readings.begin(), readings.end()},
                           QString::fromStdString(pane.shown->identSegment));
    }
    Hover(mActive, mHovered);
}

void ViewWindow::ShowTexts()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    const Pane& pane = mPanes[mActive];
    const FrameScale scale = mPanes[0].clip->Scale();
    const std::int64_t frame = std::max<std::int64_t>(mShown, 0);
    const QString timecode = QString::fromStdString(TimecodeOf(scale, frame));
    mTimeline->SetFrame(frame);
    if (!mPosition->hasFocus()) {
        mPosition->setText(QString::number(frame));
    }
    mTimecode->setText(timecode);
    setWindowTitle(QString("%1, frame %2 of %3%4")
                       .arg(TextOfPath(pane.clip->File().filename()))
                       .arg(frame)
                       .arg(scale.count)
                       .arg(timecode.isEmpty() ? "" : ", " + timecode));
    mPlayButton->setText(mTransport.Speed() != 0 ? QStringLiteral("\u25A0") : QStringLiteral("\u25B6"));
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
    mPlaying->setText(playing.join("  |  "));
    mPlaying->setToolTip(mPlaying->text());
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
    // From the first frame that was shown while it plays.
    if (!mIsSoundOn && mTransport.Shown() > 0) {
        mSound.Start(pane.clip, seconds);
        mIsSoundOn = true;
        mSoundCheckedAt = Now();
        mTransport.Go(mShown, Now()); // to open a device takes time
    } else if (mIsSoundOn && Now() - mSoundCheckedAt > 1.0) {
        mSoundCheckedAt = Now();
        const double position = mSound.Position();
        if (position >= 0 && std::abs(position - seconds) > kSoundSlack) {
            mSound.Start(pane.clip, seconds);
        }
    }
}

void ViewWindow::GoTo(std::int64_t frame)
{
    mTransport.Go(frame, Now());
    Tick();
}

void ViewWindow::GoToTyped()
{
    if (mPanes.empty()) {
        return;
    }
    try {
        const std::int64_t frame = FrameNamed(mPanes[0].clip->Scale(),
                                              mPosition->text().trimmed().toStdString(), mTransport.Due(Now()));
        mPosition->clearFocus();
        GoTo(frame);
    } catch (const exporting::ExportError& error) {
        Say(error.what());
    }
}

void ViewWindow::Hover(std::size_t index, std::optional<PixelPlace> place)
{
    mHovered = place;
    if (!place || index >= mPanes.size() || !mPanes[index].shown) {
        mInspector->setText(" ");
        return;
    }
    const exporting::FrameView& pixels = mPanes[index].shown->pixels;
    if (place->x < pixels.width && place->y < pixels.height) {
        mInspector->setText(QString::fromStdString(TextOf(ReadPixel(pixels, place->x, place->y))));
    }
}

void ViewWindow::ChangeZoom(const Zoom& zoom)
{
    mZoom = zoom;
    for (const Pane& pane : mPanes) {
        pane.view->SetZoom(zoom);
    }
    for (PictureView* const view : {mMovieView, mDifferenceView}) {
        if (view != nullptr) {
            view->SetZoom(zoom);
        }
    }
    ShowTexts();
}

void ViewWindow::Say(const QString& text)
{
    statusBar()->showMessage(text, 8000);
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

std::string ViewWindow::PlayingText() const
{
    return std::to_string(mTransport.Shown()) + " frames shown, " + std::to_string(mTransport.Dropped()) +
           " dropped";
}

void ViewWindow::keyPressEvent(QKeyEvent* event)
{
    const QString text = event->text();
    const bool begins = text.size() == 1 && (text[0].isDigit() || text[0] == '+' || text[0] == '-');
    if (event->key() == Qt::Key_Escape) {
        mPosition->clearFocus();
        ShowTexts();
    } else if (begins && !mPosition->hasFocus()) {
        mPosition->setFocus();
        mPosition->setText(text);
    } else {
        QMainWindow::keyPressEvent(event);
    }
}

void ViewWindow::RestoreLayout()
{
    mKeepsLayout = true;
    const QSettings settings(QSettings::IniFormat, QSettings::UserScope, "tessel", "view");
    restoreGeometry(settings.value("geometry").toByteArray());
    restoreState(settings.value("panels").toByteArray());
}

void ViewWindow::closeEvent(QCloseEvent* event)
{
    if (mKeepsLayout) {
        QSettings settings(QSettings::IniFormat, QSettings::UserScope, "tessel", "view");
        settings.setValue("geometry", saveGeometry());
        settings.setValue("panels", saveState());
    }
    QMainWindow::closeEvent(event);
}

} // namespace tessel::view
