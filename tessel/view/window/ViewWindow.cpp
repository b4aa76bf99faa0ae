#include "ViewWindow.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/view/model/CommandText.h>
#include <tessel/view/model/Inspector.h>
#include <tessel/view/window/FrameSaving.h>

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMimeData>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace tessel::view {
namespace {

constexpr int kAhead = 3;           // frames that are made before they are due
constexpr int kMostAhead = 50;      // that are begun earlier because they take long
constexpr int kTickMs = 4;          // while it plays
constexpr double kSoundSlack = 0.3; // seconds that sound may be off before it is started anew

QString TextOfPath(const std::filesystem::path& path)
{
    return QString::fromStdString(importhost::DisplayName(path));
}

std::filesystem::path PathOf(const QString& name)
{
    const QByteArray bytes = QFile::encodeName(name);
    return std::filesystem::path(std::string(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

/// The pixels of a picture in the layout `Bgra`, not copied; alpha is ignored.
QImage ImageOf(const exporting::Picture& picture)
{
    return QImage(reinterpret_cast<const uchar*>(picture.planes[0]), picture.width, picture.height,
                  picture.rowBytes[0], QImage::Format_RGB32);
}

QImage OverlayOf(const scopes::CodeFaults& faults)
{
    QImage image(faults.width, faults.height, QImage::Format_ARGB32_Premultiplied);
    constexpr QRgb kReserved = qRgba(255, 0, 255, 255);
    constexpr QRgb kRange = qRgba(255, 64, 0, 255);
    constexpr QRgb kGamut = qRgba(255, 220, 0, 255);
    for (int y = 0; y < faults.height; ++y) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const std::uint8_t* const flags = faults.flags.data() + static_cast<std::ptrdiff_t>(y) * faults.width;
        for (int x = 0; x < faults.width; ++x) {
            const std::uint8_t found = flags[x];
            line[x] = (found & scopes::kReservedCode) != 0   ? kReserved
                      : (found & scopes::kOutsideRange) != 0 ? kRange
                      : (found & scopes::kOutsideGamut) != 0 ? kGamut
                                                             : 0;
        }
    }
    return image;
}

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

void ViewWindow::BuildPanels()
{
    auto* const middle = new QWidget(this);
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    mPictures = new QSplitter(Qt::Horizontal, middle);
    mPictures->setChildrenCollapsible(false);
    column->addWidget(mPictures, 1);

    mInspector = new QLabel(middle);
    mInspector->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    mInspector->setContentsMargins(8, 2, 8, 2);
    mInspector->setAccessibleName("Pixel under the pointer");
    mInspector->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    mInspector->setTextInteractionFlags(Qt::TextSelectableByMouse);
    mInspector->setFocusPolicy(Qt::NoFocus);
    column->addWidget(mInspector);

    auto* const row = new QHBoxLayout();
    row->setContentsMargins(8, 0, 8, 4);
    const auto button = [&](const QString& text, const QString& name, auto action) {
        auto* const made = new QToolButton(middle);
        made->setText(text);
        made->setToolTip(name);
        made->setAccessibleName(name);
        made->setFocusPolicy(Qt::TabFocus);
        QObject::connect(made, &QToolButton::clicked, this, action);
        row->addWidget(made);
        return made;
    };
    button(QStringLiteral("\u25C0|"), "One frame back (Left)", [this] {
        mTransport.Step(-1, Now());
        Tick();
    });
    mPlayButton = button(QStringLiteral("\u25B6"), "Play or stop (Space)", [this] {
        mTransport.Toggle(Now());
        Tick();
    });
    button(QStringLiteral("|\u25B6"), "One frame on (Right)", [this] {
        mTransport.Step(1, Now());
        Tick();
    });
    mPosition = new QLineEdit(middle);
    mPosition->setFixedWidth(120);
    mPosition->setAccessibleName("Frame number or timecode");
    mPosition->setToolTip("Frame number or timecode: type one and press Return");
    mPosition->setFocusPolicy(Qt::ClickFocus);
    QObject::connect(mPosition, &QLineEdit::returnPressed, this, [this] { GoToTyped(); });
    row->addWidget(mPosition);
    mTimecode = new QLabel(middle);
    mTimecode->setMinimumWidth(90);
    mTimecode->setAccessibleName("Timecode");
    row->addWidget(mTimecode);
    mTimeline = new Timeline(middle);
    mTimeline->onMoved = [this](std::int64_t frame) { GoTo(frame); };
    row->addWidget(mTimeline, 1);
    column->addLayout(row);
    setCentralWidget(middle);

    const auto dock = [this](const QString& title, const char* name, QWidget* content) {
        auto* const made = new QDockWidget(title, this);
        made->setObjectName(name);
        made->setWidget(content);
        made->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetClosable |
                          QDockWidget::DockWidgetFloatable);
        addDockWidget(Qt::RightDockWidgetArea, made);
        QObject::connect(made, &QDockWidget::visibilityChanged, this, [this] { Tick(); });
        return made;
    };
    mScopes = new ScopesPanel(this);
    mScopesDock = dock("Scopes", "scopes", mScopes);
    mMetersPanel = new MetersPanel(this);
    mMetersDock = dock("Meters", "meters", mMetersPanel);
    mFindings = new QListWidget(this);
    mFindings->setAccessibleName("Findings");
    mFindings->setFocusPolicy(Qt::ClickFocus);
    mFindings->setWordWrap(true);
    QObject::connect(mFindings, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        if (item->data(Qt::UserRole).isValid()) {
            GoTo(item->data(Qt::UserRole).toLongLong());
        }
    });
    mFindingsDock = dock("Findings", "findings", mFindings);
    addDockWidget(Qt::BottomDockWidgetArea, mFindingsDock);
    mFindingsDock->hide();
    resizeDocks({mFindingsDock}, {110}, Qt::Vertical);
    resizeDocks({mScopesDock, mMetersDock}, {700, 220}, Qt::Vertical);
    resizeDocks({mScopesDock}, {380}, Qt::Horizontal);

    mPlaying = new QLabel(this);
    mPlaying->setAccessibleName("Playing");
    statusBar()->addPermanentWidget(mPlaying);
}

void ViewWindow::BuildMenus()
{
    const auto add = [this](QMenu* menu, const QString& text, const QList<QKeySequence>& keys, auto action) {
        QAction* const made = menu->addAction(text);
        made->setShortcuts(keys);
        made->setShortcutContext(Qt::WindowShortcut);
        QObject::connect(made, &QAction::triggered, this, action);
        return made;
    };
    QMenu* const file = menuBar()->addMenu("&File");
    add(file, "&Open clips...", {QKeySequence::Open}, [this] {
        std::vector<std::filesystem::path> files;
        for (const QString& name : QFileDialog::getOpenFileNames(this, "Open clips")) {
            files.push_back(PathOf(name));
        }
        if (!files.empty()) {
            try {
                OpenClips(files);
            } catch (const std::exception& error) {
                Say(error.what());
            }
        }
    });
    add(file, "&Settings of the clip...", {QKeySequence(Qt::Key_E)}, [this] { EditSettings(); });
    add(file, "Save the &frame as...", {QKeySequence::Save}, [this] { SaveFrame(); });
    add(file, "&Copy the command for this frame", {QKeySequence::Copy}, [this] { CopyCommand(); });
    add(file, "&Quit", {QKeySequence::Quit, QKeySequence(Qt::Key_Q)}, [this] { close(); });

    QMenu* const play = menuBar()->addMenu("&Play");
    const auto drive = [&](const QString& text, const QList<QKeySequence>& keys, auto action) {
        add(play, text, keys, [this, action] {
            action();
            Tick();
        });
    };
    drive("Play or stop", {QKeySequence(Qt::Key_Space)}, [this] { mTransport.Toggle(Now()); });
    drive("Forwards, then faster", {QKeySequence(Qt::Key_L)}, [this] { mTransport.Forward(Now()); });
    drive("Stop", {QKeySequence(Qt::Key_K)}, [this] { mTransport.Stop(Now()); });
    drive("Backwards, then faster", {QKeySequence(Qt::Key_J)}, [this] { mTransport.Backward(Now()); });
    drive("One frame on", {QKeySequence(Qt::Key_Right)}, [this] { mTransport.Step(1, Now()); });
    drive("One frame back", {QKeySequence(Qt::Key_Left)}, [this] { mTransport.Step(-1, Now()); });
    drive("Ten frames on", {QKeySequence("Shift+Right")}, [this] { mTransport.Step(10, Now()); });
    drive("Ten frames back", {QKeySequence("Shift+Left")}, [this] { mTransport.Step(-10, Now()); });
    drive("First frame", {QKeySequence(Qt::Key_Home)}, [this] { mTransport.Go(0, Now()); });
    drive("Last frame", {QKeySequence(Qt::Key_End)},
          [this] { mTransport.Go(mPanes.empty() ? 0 : mPanes[0].clip->Scale().count - 1, Now()); });
    add(play, "Go to a frame", {QKeySequence(Qt::Key_G)}, [this] {
        mPosition->setFocus();
        mPosition->selectAll();
    });
    QAction* const every = add(play, "Every frame, none dropped", {QKeySequence(Qt::Key_T)}, [this](bool isOn) {
        mTransport.SetPace(isOn ? Pace::EveryFrame : Pace::RealTime, Now());
        Tick();
    });
    every->setCheckable(true);
    QAction* const loop = add(play, "In a loop", {QKeySequence(Qt::Key_R)}, [this](bool isOn) {
        mTransport.SetLooping(isOn);
        Tick();
    });
    loop->setCheckable(true);

    QMenu* const view = menuBar()->addMenu("&View");
    add(view, "Fit, in its true shape", {QKeySequence("Ctrl+0"), QKeySequence(Qt::Key_Z)},
        [this] { ChangeZoom({}); });
    add(view, "Code pixels 1:1", {QKeySequence("Ctrl+1"), QKeySequence(Qt::Key_X)},
        [this] { ChangeZoom({.pixelScale = 1}); });
    add(view, "Larger", {QKeySequence::ZoomIn}, [this] {
        ChangeZoom({std::min(std::max(mZoom.pixelScale, 0) + 1, 64), mZoom.panX, mZoom.panY});
    });
    add(view, "Smaller", {QKeySequence::ZoomOut}, [this] {
        ChangeZoom({std::max(mZoom.pixelScale - 1, 0), mZoom.panX, mZoom.panY});
    });
    view->addSeparator();
    auto* const fields = new QActionGroup(this);
    const std::pair<FieldView, const char*> kFields[] = {{FieldView::Woven, "Both fields woven"},
                                                         {FieldView::Upper, "Upper field"},
                                                         {FieldView::Lower, "Lower field"},
                                                         {FieldView::Bob, "One field after the other"}};
    for (const auto& [field, text] : kFields) {
        QAction* const action = add(view, text, {}, [this, field = field] {
            mFieldView = field;
            Tick();
            ShowTexts();
        });
        action->setCheckable(true);
        action->setChecked(field == FieldView::Woven);
        fields->addAction(action);
    }
    add(view, "Next field view", {QKeySequence(Qt::Key_F)}, [fields] {
        const QList<QAction*> actions = fields->actions();
        actions[(actions.indexOf(fields->checkedAction()) + 1) % actions.size()]->trigger();
    });
    view->addSeparator();
    QAction* const faults = add(view, "Mark codes out of range", {QKeySequence(Qt::Key_O)}, [this](bool isOn) {
        mShowsFaults = isOn;
        Tick();
    });
    faults->setCheckable(true);
    add(view, "Difference, or a wipe", {QKeySequence(Qt::Key_D)}, [this] {
        mIsWipe = !mIsWipe;
        ArrangePanes();
    });
    add(view, "More gain of the difference", {QKeySequence(Qt::Key_BracketRight)},
        [this] { ChangeGain(2 * mGain); });
    add(view, "Less gain of the difference", {QKeySequence(Qt::Key_BracketLeft)},
        [this] { ChangeGain(mGain / 2); });
    view->addSeparator();
    mScopesDock->toggleViewAction()->setShortcut(QKeySequence(Qt::Key_S));
    mMetersDock->toggleViewAction()->setShortcut(QKeySequence(Qt::Key_M));
    view->addAction(mScopesDock->toggleViewAction());
    view->addAction(mMetersDock->toggleViewAction());
    view->addAction(mFindingsDock->toggleViewAction());
    add(view, "Next clip's scopes and meters", {QKeySequence(Qt::Key_N)}, [this] {
        if (!mPanes.empty()) {
            Activate((mActive + 1) % mPanes.size());
        }
    });
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
        mWatcher.addPath(QFile::decodeName(mPanes[i].clip->File().c_str()));
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

void ViewWindow::StopComparing()
{
    mComparison.reset();
    mCompared = nullptr;
    mReport = nullptr;
    delete std::exchange(mMovieView, nullptr);
    delete std::exchange(mDifferenceView, nullptr);
    mTimeline->SetMarks({});
    mFindings->clear();
    mFindingsDock->hide();
}

void ViewWindow::Compare(const std::string& movie)
{
    StopComparing();
    mComparison = std::make_unique<Comparison>(mPanes[0].clip, movie, [this] {
        QMetaObject::invokeMethod(
            this, [this] { Tick(); }, Qt::QueuedConnection);
    });
    for (PictureView** const view : {&mMovieView, &mDifferenceView}) {
        *view = new PictureView(mPictures);
        (*view)->onPanned = mPanes[0].view->onPanned;
        (*view)->onWheel = mPanes[0].view->onWheel;
        (*view)->SetZoom(mZoom);
    }
    // Beside the clip that it was made of.
    mPictures->insertWidget(1, mMovieView);
    mPictures->insertWidget(2, mDifferenceView);
    mFindingsDock->show();
    ArrangePanes();
    Tick();
}

void ViewWindow::ArrangePanes()
{
    if (!mComparison) {
        Say("There is no movie to compare with: tessel view CLIP --against MOVIE, or drop one on the window");
        return;
    }
    mMovieView->setVisible(!mIsWipe);
    mDifferenceView->setVisible(!mIsWipe);
    mCompared = nullptr; // shown anew
    ShowCompared();
    if (mIsWipe) {
        Say("Left of the line the clip, right of it the movie; drag the line");
    } else if (mShown >= 0) {
        ShowPane(mPanes[0], FrameIn(mPanes[0], mShown)); // without the movie on top
    }
}

void ViewWindow::ChangeGain(int gain)
{
    constexpr int kMostGain = 64;
    mGain = std::clamp(gain, 1, kMostGain);
    Tick();
}

void ViewWindow::TakeScale()
{
    const FrameScale scale = mPanes[0].clip->Scale();
    mTransport.SetClip(scale.count, scale.PerSecond(), Now());
    mTimeline->SetFrameCount(scale.count);
    mShown = -1;
}

void ViewWindow::ReloadChanged(const QString& file)
{
    for (Pane& pane : mPanes) {
        const QString name = QFile::decodeName(pane.clip->File().c_str());
        if (name != file) {
            continue;
        }
        mWatcher.addPath(file); // a file that was replaced is another one
        try {
            Pane fresh = MakePane(pane.clip->File());
            fresh.view = pane.view;
            pane = std::move(fresh);
        } catch (const std::exception& error) {
            Say(QString("%1; the earlier picture stays").arg(error.what()));
            return;
        }
    }
    if (mComparison && QFile::decodeName(mPanes[0].clip->File().c_str()) == file) {
        const std::string movie = mComparison->Movie();
        try {
            Compare(movie);
        } catch (const std::exception& error) {
            Say(error.what());
        }
    }
    TakeScale();
    Activate(mActive);
    Tick();
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

void ViewWindow::ShowCompared()
{
    if (!mComparison || mShown < 0) {
        return;
    }
    if (mReport != mComparison->Report()) {
        mReport = mComparison->Report();
        ShowFindings();
    }
    mComparison->Want(mShown, mGain);
    const std::shared_ptr<const ComparedFrame> newest = mComparison->Newest();
    if (!newest || newest == mCompared) {
        return;
    }
    mCompared = newest;
    const ComparedPictures& pictures = newest->pictures;
    const bool hasPicture = newest->picture >= 0;
    const QString state = QString::fromStdString(mComparison->State());
    PaneContent movie;
    movie.size = {hasPicture ? pictures.movie.width : 1, hasPicture ? pictures.movie.height : 1,
                  mPanes[0].clip->Facts().pixelAspect};
    movie.title = QString("%1   %2").arg(
        hasPicture
            ? QString("picture %1%2").arg(newest->picture).arg(newest->isAligned ? "" : " (not aligned yet)")
            : QString("no picture"),
        state);
    movie.trouble = QString::fromStdString(newest->trouble);
    PaneContent difference;
    difference.size = mPanes[0].clip->Size();
    difference.trouble = movie.trouble;
    difference.owner = movie.owner = newest;
    difference.title = QString("difference x%1   mean %2, most %3 of 255%4")
                           .arg(newest->gain)
                           .arg(pictures.meanOff, 0, 'f', 3)
                           .arg(pictures.mostOff, 0, 'f', 1)
                           .arg(pictures.isSampleBySample ? "" : ", scaled");
    if (hasPicture) {
        movie.image = ImageOf(pictures.movie);
        difference.image = ImageOf(pictures.difference);
    }
    if (mIsWipe) {
        PaneContent both = mPanes[0].view->Content();
        both.wiped = movie.image;
        both.title = mPanes[0].view->Content().title.section("   ", 0, 1) + "   |   " + movie.title;
        mWiped = newest;
        mPanes[0].view->Show(std::move(both));
    }
    mMovieView->Show(std::move(movie));
    mDifferenceView->Show(std::move(difference));
}

void ViewWindow::ShowFindings()
{
    mFindings->clear();
    std::vector<TimelineMark> marks;
    if (!mReport) {
        return;
    }
    const auto add = [&](const verify::Finding& finding, const QString& indent) {
        const QString text = indent + QString::fromStdString(finding.id + ": " + finding.message);
        auto* const item = new QListWidgetItem(text, mFindings);
        for (const verify::Span& span : finding.frames) {
            marks.push_back({span.first, span.last, text});
        }
        if (!finding.frames.empty()) {
            item->setData(Qt::UserRole, static_cast<qlonglong>(finding.frames.front().first));
        }
    };
    for (const verify::Finding& finding : mReport->findings) {
        add(finding, "");
        for (const verify::Finding& consequence : finding.consequences) {
            add(consequence, "    ");
        }
    }
    if (mReport->findings.empty()) {
        mFindings->addItem(QString::fromStdString(mComparison->State()));
    }
    mTimeline->SetMarks(std::move(marks));
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

void ViewWindow::SaveFrame()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    const Pane& pane = mPanes[mActive];
    const std::int64_t frame = FrameIn(pane, std::max<std::int64_t>(mShown, 0));
    const QFileInfo clip(QFile::decodeName(pane.clip->File().c_str()));
    const QString proposal = clip.dir().filePath(QString("%1-%2.png").arg(clip.completeBaseName()).arg(frame));
    const QString name = QFileDialog::getSaveFileName(this, "Save the frame", proposal,
                                                      "PNG picture (*.png);;OpenEXR picture, floats (*.exr)");
    if (name.isEmpty()) {
        return;
    }
    try {
        SaveFrameAs(pane.clip->Source(), frame, PathOf(name));
        Say("Saved to " + name);
    } catch (const std::exception& error) {
        Say(error.what());
    }
}

void ViewWindow::CopyCommand()
{
    std::vector<std::string> clips;
    for (const Pane& pane : mPanes) {
        clips.push_back(qelcore::text::UTF8Text(pane.clip->File()));
    }
    const QString command = QString::fromStdString(
        ViewCommand(clips, mComparison ? mComparison->Movie() : "", std::max<std::int64_t>(mShown, 0)));
    QApplication::clipboard()->setText(command);
    Say("Copied: " + command);
}

void ViewWindow::EditSettings()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    if (mSettings && mSettings->state() != QProcess::NotRunning) {
        Say("The settings dialog is already open");
        return;
    }
    // The dialog is the program's own, in a process of its own; the picture follows the file that it writes.
    mSettings = std::make_unique<QProcess>();
    QStringList arguments{"edit", QFile::decodeName(mPanes[mActive].clip->File().c_str())};
    if (!mPlugin.empty()) {
        arguments << "--plugin" << QFile::decodeName(mPlugin.c_str());
    }
    QObject::connect(mSettings.get(), &QProcess::finished, this,
                     [this](int code, QProcess::ExitStatus /*status*/) {
                         const QString said = QString::fromUtf8(mSettings->readAllStandardError()).trimmed();
                         if (code != 0 || !said.isEmpty()) {
                             Say(said.section('\n', -1));
                         }
                     });
    QObject::connect(mSettings.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            Say("The settings dialog cannot be started: " + mSettings->errorString());
        }
    });
    mSettings->start(QCoreApplication::applicationDirPath() + "/" TESSEL_FROM_VIEW, arguments);
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

bool ViewWindow::IsClip(const std::filesystem::path& file) const
{
    try {
        static_cast<void>(importhost::FileTypeOf(*mImporter, file));
        return true;
    } catch (const importhost::HostError&) {
        return false;
    }
}

void ViewWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void ViewWindow::dropEvent(QDropEvent* event)
{
    std::vector<std::filesystem::path> files;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) {
            files.push_back(PathOf(url.toLocalFile()));
        }
    }
    if (files.empty()) {
        return;
    }
    try {
        if (files.size() == 1 && !mPanes.empty() && !IsClip(files[0])) {
            Compare(qelcore::text::UTF8Text(files[0]));
            return;
        }
        OpenClips(files);
    } catch (const std::exception& error) {
        Say(error.what());
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
