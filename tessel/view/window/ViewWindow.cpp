#include "ViewWindow.h"

#include "Paths.h"

#include <tessel/export/ExportError.h>

#include <QDockWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <algorithm>
#include <string>
#include <thread>
#include <utility>

namespace tessel::view {
namespace {

constexpr int kTickMs = 4; // while it plays

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
        mTransport.Go(ExistingFrameNamed(mPanes[0].clip->Scale(), request.frame), Now());
    }
}

ViewWindow::~ViewWindow()
{
    mSound.Stop();
    mComparison.reset(); // threads of which call back, as those of the panes
    mPanes.clear();
    // QWidget destroys the docks when no member of this class is left, and each still says that it is hidden.
    for (QDockWidget* const dock : findChildren<QDockWidget*>()) {
        dock->disconnect(this);
    }
}

int ViewWindow::ThreadsPerPane() noexcept
{
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 4);
}

ViewWindow::Pane ViewWindow::MakePane(const std::filesystem::path& file)
{
    Pane pane;
    pane.clip = std::make_shared<const ViewedClip>(mImporter, file);
    pane.ahead = std::make_unique<FrameAhead>(pane.clip, ThreadsPerPane(), [this] {
        QMetaObject::invokeMethod(
            this, [this] { Tick(); }, Qt::QueuedConnection);
    });
    return pane;
}

void ViewWindow::OpenClips(const std::vector<std::filesystem::path>& files)
{
    std::vector<Pane> panes;
    panes.reserve(files.size());
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
        content.trouble = "Drop clips here, or press Ctrl+O. A movie is compared with the first clip.";
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
    mFindingsDock->setVisible(mComparison != nullptr); // whatever was compared last time
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
