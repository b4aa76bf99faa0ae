#include "DialogWindow.h"

#include "ColorChips.h"
#include "PreviewPane.h"
#include "StatusBar.h"

#include <kestrel/qelui/script/ScriptRunner.h>
#include <kestrel/qelui/toolkit/UserInterface.h>
#include <kestrel/qt/EventSeam.h>
#include <kestrel/qt/controls/AltLetters.h>
#include <kestrel/qt/controls/NumberField.h>
#include <kestrel/qt/script/QtDriver.h>

#include <QCloseEvent>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

namespace kestrelqt {

namespace {

constexpr int kFootGap = 8;            // logical pixels above the foot
constexpr QSize kFrame(16, 60);        // of the window system: title bar, borders, a panel
constexpr int kNarrowestPreview = 150; // logical pixels; a smaller one shows nothing of use
constexpr int kFootHeight = 60;        // about, while the controls are built
constexpr QSize kAnySize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);

QWidget* ParentOf(const qelui::UI_Dialog& dialog)
{
    const qelui::TopLevelWindow* const parent = dialog.ParentWindow();
    return parent == nullptr ? nullptr : static_cast<QWidget*>(parent->NativeWindow());
}

/// What stays in sight below the controls, with a line on top: controls scroll under it.
class Foot final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter(this).fillRect(QRect(0, 0, width(), 1), palette().color(QPalette::Mid));
    }
};

} // namespace

/// Scrolls upright only, and is as wide as what it shows.
class ScrollArea final : public QScrollArea {
public:
    explicit ScrollArea(QWidget* parent) : QScrollArea(parent)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded); // for screens narrower than any layout
        setFocusPolicy(Qt::NoFocus);
    }

    [[nodiscard]] QSize sizeHint() const override { return widget()->sizeHint() + QSize(BarWidth(), 0); }
    [[nodiscard]] QSize minimumSizeHint() const override
    {
        constexpr int kLeastHeight = 80;
        return {widget()->minimumSizeHint().width() + BarWidth(), kLeastHeight};
    }

private:
    [[nodiscard]] int BarWidth() const
    {
        return style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    }
};

DialogWindow::DialogWindow(qelui::UI_Dialog& dialog, QSize room)
    : QDialog(ParentOf(dialog)), mDialog(dialog), mRoom(room)
{
    if (!mRoom.isValid()) {
        // With a script the window is not limited to the screen, so that screenshots show the whole dialog.
        mRoom = dialog.Script() == nullptr ? screen()->availableSize() - kFrame : kAnySize;
    }
    setWindowTitle(QString::fromStdString(dialog.Title()));
    setModal(true);
    mWidgets.altLetters = ChooseAltLetters(dialog, IsColorButton);
    mScroll = new ScrollArea(this);
    BuildContent();
    BuildFoot();

    auto* const body = new QHBoxLayout;
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(0);
    body->addWidget(mScroll, 1);
    if (dialog.GetDocument() && qelui::UserInterface::Get().GetPreviewRenderer()) {
        mPreview = new PreviewPane(dialog, this);
        const int margin = mWidgets.density.MarginOf(dialog, /*isCard=*/false);
        auto* const side = new QVBoxLayout;
        side->setContentsMargins(margin, margin, margin, margin);
        side->addWidget(mPreview);
        body->addLayout(side);
    }
    auto* const page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addLayout(body, 1);
    page->addWidget(mFoot);
    for (std::size_t at = 1; at < mWidgets.tabOrder.size(); ++at) {
        QWidget::setTabOrder(mWidgets.tabOrder[at - 1], mWidgets.tabOrder[at]);
    }
    for (const auto& [model, binding] : mWidgets.controls) {
        binding->Widget()->installEventFilter(this);
    }
    ConnectKeys();
    FitToScreen();
    dialog.SetNativeWindow(static_cast<QWidget*>(this));
    dialog.SetObserver(this);
    OnStatusChanged();
}

void DialogWindow::BuildContent()
{
    for (const Density& density : kDensities) {
        delete mScroll->takeWidget();
        DialogWidgets fresh;
        fresh.density = density;
        fresh.altLetters = std::move(mWidgets.altLetters);
        mWidgets = std::move(fresh);
        QWidget* const content = BuildGroup(mDialog, mScroll, mWidgets);
        mScroll->setWidget(content);
        const bool fitsWidth = mScroll->minimumSizeHint().width() <= mRoom.width();
        const bool isLastButNarrow = density.sharesRows && !(&density + 1)->sharesRows;
        // Where nothing fits the height, the closest one that fits the width scrolls least.
        if (fitsWidth && (isLastButNarrow || content->sizeHint().height() + kFootHeight <= mRoom.height())) {
            break;
        }
    }
}

void DialogWindow::BuildFoot()
{
    mFoot = new Foot(this);
    auto* const row = new QHBoxLayout(mFoot);
    const int margin = mWidgets.density.MarginOf(mDialog, /*isCard=*/false);
    row->setContentsMargins(margin, kFootGap, margin, margin);
    row->setSpacing(2 * kFootGap);
    mStatus = new StatusBar(mFoot);
    row->addWidget(mStatus, 1);
    if (qelui::UI_Group* const buttons = OkCancelRowOf(mDialog)) {
        row->addWidget(BuildGroup(*buttons, mFoot, mWidgets));
    }
}

void DialogWindow::ConnectKeys()
{
    // Return alone belongs to the control that has the focus.
    for (const QKeyCombination keys : {Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter}) {
        auto* const shortcut = new QShortcut(QKeySequence(keys), this);
        connect(shortcut, &QShortcut::activated, this, [this] {
            for (auto* const button : mFoot->findChildren<QPushButton*>()) {
                if (button->isDefault() && button->isEnabled()) {
                    button->click();
                    return;
                }
            }
        });
    }
}

DialogWindow::~DialogWindow()
{
    mDialog.SetObserver(nullptr);
    mDialog.SetNativeWindow(nullptr);
}

void DialogWindow::FitToScreen()
{
    const int margin = mWidgets.density.MarginOf(mDialog, /*isCard=*/false);
    const int side = mPreview == nullptr ? 0 : mPreview->sizeHint().width() + 2 * margin;
    const QSize wanted = mScroll->sizeHint() + QSize(side, mFoot->sizeHint().height());
    setMinimumWidth(qMin(mScroll->minimumSizeHint().width(), mRoom.width()));
    resize(wanted.boundedTo(mRoom));
    ArrangePreview();
}

void DialogWindow::ArrangePreview()
{
    if (mPreview == nullptr) {
        return;
    }
    const int margin = mWidgets.density.MarginOf(mDialog, /*isCard=*/false);
    const int room = width() - mScroll->minimumSizeHint().width() - 2 * margin;
    mPreview->setFixedWidth(qBound(kNarrowestPreview, room, mPreview->sizeHint().width()));
    mPreview->setVisible(room >= kNarrowestPreview);
}

void DialogWindow::resizeEvent(QResizeEvent* event)
{
    ArrangePreview();
    QDialog::resizeEvent(event);
}

bool DialogWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn) {
        for (const auto& [model, binding] : mWidgets.controls) {
            if (binding->Widget() == watched) {
                AtSeam([this, model = model] { mDialog.Status().Explain(*model); });
                ShowFocused(*binding->Widget(), static_cast<QFocusEvent*>(event)->reason());
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void DialogWindow::ShowFocused(QWidget& widget, Qt::FocusReason reason)
{
    // Qt scrolls for Tab between controls of the scroll area only. What a mouse points at is in sight, and must
    // not move away under a click.
    const bool isByKey = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                         reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
    if (isByKey && mScroll->isAncestorOf(&widget)) {
        mScroll->ensureWidgetVisible(&widget);
    }
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
    mDialog.Status().ExplainFirst();
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
        mPreview->Finish();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    return grab();
}

void DialogWindow::reject()
{
    AtSeam([this] { mDialog.RequestClose(); });
}

void DialogWindow::closeEvent(QCloseEvent* event)
{
    event->ignore(); // the dialog closes the window itself
    AtSeam([this] {
        CommitTyping(*this); // a number that is typed and not entered is a change, too
        mDialog.RequestClose();
    });
}

void DialogWindow::OnControlChanged(qelui::UI_ControlView& control)
{
    AtSeam([&] { Follow(control); });
}

void DialogWindow::Follow(qelui::UI_ControlView& control)
{
    if (const auto label = mWidgets.labels.find(&control); label != mWidgets.labels.end()) {
        const auto letter = mWidgets.altLetters.find(&control);
        label->second->setText(
            WithAltLetter(control.Label(), letter == mWidgets.altLetters.end() ? QChar() : letter->second));
    }
    FollowColorChip(control, mWidgets);
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

void DialogWindow::OnStatusChanged()
{
    AtSeam([this] { mStatus->Follow(mDialog.Status()); });
}

void DialogWindow::OnDialogClosed()
{
    if (mLoop != nullptr) {
        mLoop->quit();
    }
}

} // namespace kestrelqt
