/// What the player's window is made of: pictures, the line of controls, panels, status.

#include "Readout.h"
#include "ViewWindow.h"

#include <QDockWidget>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
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

    column->addLayout(ControlLine(middle));
    setCentralWidget(middle);
    BuildDocks();

    // Gives its place to messages while they are shown.
    mState = new Readout("Shown", 0, this);
    statusBar()->addWidget(mState, 1);
}

QHBoxLayout* ViewWindow::ControlLine(QWidget* parent)
{
    auto* const row = new QHBoxLayout();
    row->setContentsMargins(8, 0, 8, 4);
    const auto button = [&](const QString& text, const QString& name, auto action) {
        auto* const made = new QToolButton(parent);
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
    mPosition = new QLineEdit(parent);
    mPosition->setFixedWidth(120);
    mPosition->setAccessibleName("Frame number or timecode");
    mPosition->setToolTip("Frame number or timecode: type one and press Return");
    mPosition->setFocusPolicy(Qt::ClickFocus);
    QObject::connect(mPosition, &QLineEdit::returnPressed, this, [this] { GoToTyped(); });
    row->addWidget(mPosition);
    mTimecode = new Readout("Timecode", 98, parent);
    mTimecode->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    row->addWidget(mTimecode);
    mTimeline = new Timeline(parent);
    mTimeline->onMoved = [this](std::int64_t frame) { GoTo(frame); };
    row->addWidget(mTimeline, 1);
    return row;
}

void ViewWindow::BuildDocks()
{
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
}

} // namespace tessel::view
