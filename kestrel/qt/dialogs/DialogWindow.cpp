#include "DialogWindow.h"

#include "PreviewPane.h"

#include <kestrel/qelui/script/ScriptRunner.h>
#include <kestrel/qelui/toolkit/UserInterface.h>
#include <kestrel/qt/EventSeam.h>
#include <kestrel/qt/script/QtDriver.h>

#include <QCloseEvent>
#include <QCoreApplication>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

namespace kestrelqt {

namespace {

constexpr int kButtonGap = 8; // logical pixels above OK and Cancel in a dialog without margins

QWidget* ParentOf(const qelui::UI_Dialog& dialog)
{
    const qelui::TopLevelWindow* const parent = dialog.ParentWindow();
    return parent == nullptr ? nullptr : static_cast<QWidget*>(parent->NativeWindow());
}

} // namespace

DialogWindow::DialogWindow(qelui::UI_Dialog& dialog) : QDialog(ParentOf(dialog)), mDialog(dialog)
{
    setWindowTitle(QString::fromStdString(dialog.Title()));
    setModal(true);

    // OK and Cancel are always visible; the rest scrolls if the screen is too small.
    auto* const scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scroll->setFocusPolicy(Qt::NoFocus);
    QWidget* const content = BuildGroup(dialog, scroll, mWidgets);
    scroll->setWidget(content);

    auto* const body = new QHBoxLayout;
    body->setContentsMargins(0, 0, 0, 0);
    body->addWidget(scroll, 1);
    if (dialog.GetDocument() && qelui::UserInterface::Get().GetPreviewRenderer()) {
        auto* const side = new QVBoxLayout;
        const int margin = qMax(dialog.Margin(), 0);
        side->setContentsMargins(0, margin, margin, margin);
        mPreview = new PreviewPane(dialog, this);
        side->addWidget(mPreview);
        body->addLayout(side);
    }
    auto* const page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addLayout(body, 1);
    if (qelui::UI_Group* const row = OkCancelRowOf(dialog)) {
        mButtons = BuildGroup(*row, this, mWidgets);
        const int margin = qMax(dialog.Margin(), 0);
        mButtons->layout()->setContentsMargins(margin, margin > 0 ? 0 : kButtonGap, margin, margin);
        page->addWidget(mButtons);
    }
    for (std::size_t at = 1; at < mWidgets.tabOrder.size(); ++at) {
        QWidget::setTabOrder(mWidgets.tabOrder[at - 1], mWidgets.tabOrder[at]);
    }
    FitToScreen(*content);
    dialog.SetNativeWindow(static_cast<QWidget*>(this));
    dialog.SetObserver(this);
}

DialogWindow::~DialogWindow()
{
    mDialog.SetObserver(nullptr);
    mDialog.SetNativeWindow(nullptr);
}

void DialogWindow::FitToScreen(QWidget& content)
{
    constexpr int kScreenMargin = 60; // title bar and panels
    const int side = mPreview == nullptr ? 0 : mPreview->width() + qMax(mDialog.Margin(), 0);
    const int below = mButtons == nullptr ? 0 : mButtons->sizeHint().height();
    QSize wanted = content.sizeHint() + QSize(side, below);
    // With a script the window is not limited to the screen, so that screenshots show the whole dialog.
    if (mDialog.Script() == nullptr) {
        const QSize available = screen()->availableSize() - QSize(kScreenMargin, kScreenMargin);
        if (wanted.height() > available.height()) {
            wanted.rwidth() += style()->pixelMetric(QStyle::PM_ScrollBarExtent);
        }
        wanted = wanted.boundedTo(available);
    }
    resize(wanted);
}

void DialogWindow::Run()
{
    QEventLoop loop;
    mLoop = &loop;
    EventSeam seam([this] { mDialog.Close(); });
    show();
    raise();
    activateWindow();
    if (!mWidgets.tabOrder.empty()) {
        mWidgets.tabOrder.front()->setFocus(Qt::TabFocusReason);
    }
    if (auto* const script = mDialog.Script()) {
        QTimer::singleShot(0, this, [this, script] {
            AtSeam([this, script] {
                QtDriver driver(*this);
                script->Play(driver);
            });
        });
    }
    if (!mDialog.IsClosed()) {
        loop.exec();
    }
    mLoop = nullptr;
    hide();
    seam.Rethrow();
}

ControlWidget* DialogWindow::BindingOf(const qelui::UI_ControlView& control) const
{
    const auto found = mWidgets.controls.find(&control);
    return found == mWidgets.controls.end() ? nullptr : found->second.get();
}

QPixmap DialogWindow::Picture()
{
    if (mPreview != nullptr) {
        mPreview->RefreshIfDue();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    return grab();
}

void DialogWindow::reject()
{
    AtSeam([this] { mDialog.RequestCancel(); });
}

void DialogWindow::closeEvent(QCloseEvent* event)
{
    event->ignore(); // the dialog closes the window itself
    AtSeam([this] { mDialog.RequestCancel(); });
}

void DialogWindow::OnControlChanged(qelui::UI_ControlView& control)
{
    AtSeam([&] { Follow(control); });
}

void DialogWindow::Follow(qelui::UI_ControlView& control)
{
    if (const auto label = mWidgets.labels.find(&control); label != mWidgets.labels.end()) {
        label->second->setText(QString::fromStdString(control.Label()));
    }
    if (ControlWidget* const binding = BindingOf(control)) {
        binding->Follow();
    } else {
        // A group: its controls may be enabled or disabled with it.
        for (const auto& [model, widget] : mWidgets.controls) {
            widget->Follow();
        }
    }
    if (mPreview != nullptr) {
        mPreview->RefreshSoon();
    }
}

void DialogWindow::OnDialogClosed()
{
    if (mLoop != nullptr) {
        mLoop->quit();
    }
}

} // namespace kestrelqt
