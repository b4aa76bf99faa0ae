/// The player's window.
#pragma once

#include "MetersPanel.h"
#include "PictureView.h"
#include "Readout.h"
#include "ScopesPanel.h"
#include "SoundOutput.h"
#include "Timeline.h"
#include "WindowRequest.h"

#include <tessel/scopes/Meters.h>
#include <tessel/view/compare/Comparison.h>
#include <tessel/view/model/FrameAhead.h>
#include <tessel/view/model/FramePlan.h>
#include <tessel/view/model/Transport.h>
#include <tessel/view/model/ViewedClip.h>

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QMainWindow>
#include <QProcess>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

class QDockWidget;
class QHBoxLayout;
class QLineEdit;
class QListWidget;
class QMenu;
class QSplitter;
class QToolButton;

namespace tessel::view {

/// [ui-thread]
class ViewWindow final : public QMainWindow {
public:
    /// @throws importhost::HostError, exporting::ExportError
    explicit ViewWindow(const WindowRequest& request);
    ~ViewWindow() override;
    ViewWindow(const ViewWindow&) = delete;
    ViewWindow& operator=(const ViewWindow&) = delete;

    /// Remembered places of window and panels; written when the window closes.
    void RestoreLayout();

    /// Whether what should be shown is shown: nothing is being made.
    [[nodiscard]] bool IsSettled() const;
    /// Called when it is.
    std::function<void()> onSettled;

    void PlayForwards(); ///< in a loop
    void StopPlaying();
    /// "250 frames shown, 0 dropped"
    [[nodiscard]] std::string PlayingText() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    /// A clip, its frames, and where they are shown.
    struct Pane {
        std::shared_ptr<const ViewedClip> clip;
        std::unique_ptr<FrameAhead> ahead;
        PictureView* view = nullptr;
        std::shared_ptr<const ShownFrame> shown;
    };

    void BuildMenus();
    void FillFileMenu(QMenu& menu);
    void FillPlayMenu(QMenu& menu);
    void FillViewMenu(QMenu& menu);
    void AddFieldViews(QMenu& menu);
    void BuildPanels();
    [[nodiscard]] QHBoxLayout* ControlLine(QWidget* parent);
    void BuildDocks();
    /// Shows clips, and compares a movie with the first one; what cannot be opened is said.
    void OpenFiles(const std::vector<std::filesystem::path>& files);
    void OpenClips(const std::vector<std::filesystem::path>& files);
    [[nodiscard]] static int ThreadsPerPane() noexcept;
    [[nodiscard]] Pane MakePane(const std::filesystem::path& file);
    void TakeScale();
    void Compare(const std::string& movie);
    void StopComparing();
    [[nodiscard]] bool IsClip(const std::filesystem::path& file) const;
    void ReloadChanged(const QString& file);
    void Activate(std::size_t pane);

    [[nodiscard]] double Now() const { return static_cast<double>(mClock.nsecsElapsed()) / 1e9; }
    [[nodiscard]] std::int64_t FrameIn(const Pane& pane, std::int64_t frame) const;
    [[nodiscard]] FrameWish CurrentWish() const;
    void Tick();
    void WantAround(std::int64_t due);
    [[nodiscard]] int FramesAhead() const;
    /// How many rows of a frame share a row of the screen while it plays; 1 where all are wanted.
    [[nodiscard]] int ScreenRowStep() const;
    [[nodiscard]] bool IsReady(std::int64_t frame) const;
    [[nodiscard]] bool IsShown(std::int64_t frame) const;
    void ShowNewest(std::int64_t due);
    void ShowFrame(std::int64_t frame);
    void ShowPane(Pane& pane, std::int64_t frame);
    void ShowCompared();
    void ShowFindings();
    void ChangeGain(int gain);
    void ArrangePanes();
    void ShowMeasurements();
    void ShowTexts();
    void ShowPosition();
    void ShowState();
    void SyncSound();
    void GoTo(std::int64_t frame);
    void GoToTyped();
    void Hover(std::size_t pane, std::optional<PixelPlace> place);
    void ChangeZoom(const Zoom& zoom);
    void SaveFrame();
    void CopyCommand();
    void EditSettings();
    void Say(const QString& text);

    std::shared_ptr<const importhost::Importer> mImporter;
    std::filesystem::path mPlugin;
    std::vector<Pane> mPanes;
    std::size_t mActive = 0;
    Transport mTransport{1, 25};
    QElapsedTimer mClock;
    QTimer mTimer;
    std::int64_t mShown = -1;
    std::int64_t mDue = -1; ///< when it was asked last
    FrameWish mWish;
    FieldView mFieldView = FieldView::Woven;
    bool mShowsFaults = false;
    Zoom mZoom;
    std::optional<scopes::Meters> mMeters;
    std::unique_ptr<Comparison> mComparison; ///< of the first clip; null: none
    std::shared_ptr<const ComparedFrame> mCompared;
    std::shared_ptr<const ComparedFrame> mWiped; ///< owns what the wipe shows
    std::shared_ptr<const verify::Report> mReport;
    PictureView* mMovieView = nullptr;      ///< while there is a comparison
    PictureView* mDifferenceView = nullptr; ///< likewise
    bool mIsWipe = false;
    int mGain = 1;
    SoundOutput mSound;
    double mSoundCheckedAt = 0;
    bool mIsSoundOn = false;
    std::optional<PixelPlace> mHovered; ///< in the pane `mHoveredPane`
    std::size_t mHoveredPane = 0;
    QFileSystemWatcher mWatcher;
    std::unique_ptr<QProcess> mSettings;

    QSplitter* mPictures = nullptr;
    PictureView* mEmpty = nullptr; ///< while there is no clip
    Timeline* mTimeline = nullptr;
    QLineEdit* mPosition = nullptr;
    Readout* mTimecode = nullptr;
    Readout* mInspector = nullptr;
    Readout* mState = nullptr; ///< how the picture is shown, and what was dropped
    QToolButton* mPlayButton = nullptr;
    ScopesPanel* mScopes = nullptr;
    MetersPanel* mMetersPanel = nullptr;
    QDockWidget* mScopesDock = nullptr;
    QDockWidget* mMetersDock = nullptr;
    QListWidget* mFindings = nullptr;
    QDockWidget* mFindingsDock = nullptr;
    bool mKeepsLayout = false;
};

} // namespace tessel::view
