/// What the player's window is made of: panels and menus.

#include "Paths.h"
#include "Readout.h"
#include "ViewWindow.h"

#include <QActionGroup>
#include <QDockWidget>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>
#include <utility>

namespace tessel::view {

void ViewWindow::BuildPanels()
{
    auto* const middle = new QWidget(this);
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    mPictures = new QSplitter(Qt::Horizontal, middle);
    mPictures->setChildrenCollapsible(false);
    column->addWidget(mPictures, 1);

    mInspector = new Readout("Pixel under the pointer", 0, middle);
    mInspector->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
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
    mTimecode = new Readout("Timecode", 98, middle);
    mTimecode->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
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

    // Gives its place to messages while they are shown.
    mState = new Readout("Shown", 0, this);
    statusBar()->addWidget(mState, 1);
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
    add(file, "&Open clips or a movie...", {QKeySequence::Open}, [this] {
        std::vector<std::filesystem::path> files;
        for (const QString& name : QFileDialog::getOpenFileNames(this, "Open clips, or a movie to compare")) {
            files.push_back(PathOf(name));
        }
        OpenFiles(files);
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

} // namespace tessel::view
