/// The menus of the player's window, and the keys that stand for their lines.

#include "Paths.h"
#include "ViewWindow.h"

#include <QActionGroup>
#include <QDockWidget>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

namespace tessel::view {
namespace {

/// A line of a menu that calls `act`, also by its keys.
template <class Act>
QAction* AddLine(QMenu& menu, const QString& text, const QList<QKeySequence>& keys, Act act)
{
    QAction* const made = menu.addAction(text);
    made->setShortcuts(keys);
    made->setShortcutContext(Qt::WindowShortcut);
    QObject::connect(made, &QAction::triggered, &menu, act);
    return made;
}

} // namespace

void ViewWindow::BuildMenus()
{
    FillFileMenu(*menuBar()->addMenu("&File"));
    FillPlayMenu(*menuBar()->addMenu("&Play"));
    FillViewMenu(*menuBar()->addMenu("&View"));
}

void ViewWindow::FillFileMenu(QMenu& menu)
{
    AddLine(menu, "&Open clips or a movie...", {QKeySequence::Open}, [this] {
        std::vector<std::filesystem::path> files;
        for (const QString& name : QFileDialog::getOpenFileNames(this, "Open clips, or a movie to compare")) {
            files.push_back(PathOf(name));
        }
        OpenFiles(files);
    });
    AddLine(menu, "&Settings of the clip...", {QKeySequence(Qt::Key_E)}, [this] { EditSettings(); });
    AddLine(menu, "Save the &frame as...", {QKeySequence::Save}, [this] { SaveFrame(); });
    AddLine(menu, "&Copy the command for this frame", {QKeySequence::Copy}, [this] { CopyCommand(); });
    AddLine(menu, "&Quit", {QKeySequence::Quit, QKeySequence(Qt::Key_Q)}, [this] { close(); });
}

void ViewWindow::FillPlayMenu(QMenu& menu)
{
    const auto drive = [&](const QString& text, const QList<QKeySequence>& keys, auto action) {
        AddLine(menu, text, keys, [this, action] {
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
    AddLine(menu, "Go to a frame", {QKeySequence(Qt::Key_G)}, [this] {
        mPosition->setFocus();
        mPosition->selectAll();
    });
    QAction* const every =
        AddLine(menu, "Every frame, none dropped", {QKeySequence(Qt::Key_T)}, [this](bool isOn) {
            mTransport.SetPace(isOn ? Pace::EveryFrame : Pace::RealTime, Now());
            Tick();
        });
    every->setCheckable(true);
    QAction* const loop = AddLine(menu, "In a loop", {QKeySequence(Qt::Key_R)}, [this](bool isOn) {
        mTransport.SetLooping(isOn);
        Tick();
    });
    loop->setCheckable(true);
}

void ViewWindow::FillViewMenu(QMenu& menu)
{
    AddLine(menu, "Fit, in its true shape", {QKeySequence("Ctrl+0"), QKeySequence(Qt::Key_Z)},
            [this] { ChangeZoom({}); });
    AddLine(menu, "Code pixels 1:1", {QKeySequence("Ctrl+1"), QKeySequence(Qt::Key_X)},
            [this] { ChangeZoom({.pixelScale = 1}); });
    AddLine(menu, "Larger", {QKeySequence::ZoomIn}, [this] {
        ChangeZoom({std::min(std::max(mZoom.pixelScale, 0) + 1, 64), mZoom.panX, mZoom.panY});
    });
    AddLine(menu, "Smaller", {QKeySequence::ZoomOut}, [this] {
        ChangeZoom({std::max(mZoom.pixelScale - 1, 0), mZoom.panX, mZoom.panY});
    });
    menu.addSeparator();
    AddFieldViews(menu);
    menu.addSeparator();
    QAction* const faults =
        AddLine(menu, "Mark codes out of range", {QKeySequence(Qt::Key_O)}, [this](bool isOn) {
            mShowsFaults = isOn;
            Tick();
        });
    faults->setCheckable(true);
    AddLine(menu, "Difference, or a wipe", {QKeySequence(Qt::Key_D)}, [this] {
        mIsWipe = !mIsWipe;
        ArrangePanes();
    });
    AddLine(menu, "More gain of the difference", {QKeySequence(Qt::Key_BracketRight)},
            [this] { ChangeGain(2 * mGain); });
    AddLine(menu, "Less gain of the difference", {QKeySequence(Qt::Key_BracketLeft)},
            [this] { ChangeGain(mGain / 2); });
    menu.addSeparator();
    mScopesDock->toggleViewAction()->setShortcut(QKeySequence(Qt::Key_S));
    mMetersDock->toggleViewAction()->setShortcut(QKeySequence(Qt::Key_M));
    menu.addAction(mScopesDock->toggleViewAction());
    menu.addAction(mMetersDock->toggleViewAction());
    menu.addAction(mFindingsDock->toggleViewAction());
    AddLine(menu, "Next clip's scopes and meters", {QKeySequence(Qt::Key_N)}, [this] {
        if (!mPanes.empty()) {
            Activate((mActive + 1) % mPanes.size());
        }
    });
}

void ViewWindow::AddFieldViews(QMenu& menu)
{
    auto* const fields = new QActionGroup(this);
    const std::pair<FieldView, const char*> kFields[] = {{FieldView::Woven, "Both fields woven"},
                                                         {FieldView::Upper, "Upper field"},
                                                         {FieldView::Lower, "Lower field"},
                                                         {FieldView::Bob, "One field after the other"}};
    for (const auto& [field, text] : kFields) {
        QAction* const action = AddLine(menu, text, {}, [this, field = field] {
            mFieldView = field;
            Tick();
            ShowTexts();
        });
        action->setCheckable(true);
        action->setChecked(field == FieldView::Woven);
        fields->addAction(action);
    }
    AddLine(menu, "Next field view", {QKeySequence(Qt::Key_F)}, [fields] {
        const QList<QAction*> actions = fields->actions();
        actions[(actions.indexOf(fields->checkedAction()) + 1) % actions.size()]->trigger();
    });
}

} // namespace tessel::view
