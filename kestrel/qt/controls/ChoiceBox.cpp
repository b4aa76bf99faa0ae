#include "ChoiceBox.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QListView>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace kestrelqt {

namespace {

constexpr int kTextMargin = 8; // logical pixels between text and arrow

/// The list of a combo box, in which typing finds items by what is inside their names.
class SearchList final : public QListView {
public:
    using QListView::QListView;

    /// Called by Qt with each typed letter, also while the list is closed.
    void keyboardSearch(const QString& letters) override
    {
        constexpr qint64 kPauseMilliseconds = 1500; // afterwards a new search begins
        const bool isNew = !mSinceLetter.isValid() || mSinceLetter.hasExpired(kPauseMilliseconds);
        mSinceLetter.start();
        mSought = isNew ? letters : mSought + letters;
        // The same letter again and again leads through the items that begin with it.
        const bool isRepeated = mSought.size() > 1 && mSought.count(mSought[0]) == mSought.size();
        if (isRepeated && Find(mSought[0], Place::Beginning, Start::BehindCurrent)) {
            return;
        }
        const Start start = isNew ? Start::BehindCurrent : Start::AtCurrent;
        if (!Find(mSought, Place::Beginning, start)) {
            Find(mSought, Place::Inside, start);
        }
    }

private:
    enum class Place { Beginning, Inside };
    enum class Start { AtCurrent, BehindCurrent };

    bool Find(const QString& sought, Place place, Start start)
    {
        const int count = model()->rowCount();
        const int first = currentIndex().row() + (start == Start::BehindCurrent ? 1 : 0);
        for (int step = 0; step < count; ++step) {
            const QModelIndex item = model()->index((qMax(first, 0) + step) % count, modelColumn());
            const QString text = item.data(Qt::DisplayRole).toString();
            const bool isHit = place == Place::Beginning ? text.startsWith(sought, Qt::CaseInsensitive)
                                                         : text.contains(sought, Qt::CaseInsensitive);
            if (isHit && item.flags().testFlag(Qt::ItemIsEnabled)) {
                setCurrentIndex(item);
                return true;
            }
        }
        return false;
    }

    QString mSought;
    QElapsedTimer mSinceLetter;
};

} // namespace

ChoiceBox::ChoiceBox(const qelui::UI_Popup& popup, QWidget* parent)
    : QComboBox(parent), mLeast(popup.MinWidth(), popup.MinHeight())
{
    // Its width comes from `sizeHint`: the policies that look at the items shrink the box at each change.
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setView(new SearchList(this)); // the box owns it
    view()->viewport()->installEventFilter(this);
}

int ChoiceBox::WidestItem() const
{
    int widest = 0;
    for (int index = 0; index < count(); ++index) {
        widest = qMax(widest, fontMetrics().horizontalAdvance(itemText(index)));
    }
    return widest;
}

QSize ChoiceBox::SizeFor(int textWidth) const
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QSize contents(textWidth + kTextMargin, fontMetrics().height());
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this).expandedTo(mLeast);
}

QSize ChoiceBox::sizeHint() const
{
    return SizeFor(WidestItem());
}

QSize ChoiceBox::minimumSizeHint() const
{
    constexpr int kFewLetters = 12;
    const int letters = fontMetrics().horizontalAdvance(QLatin1Char('x')) * kFewLetters;
    return SizeFor(mLeast.width() > 0 ? 0 : qMin(WidestItem(), letters));
}

void ChoiceBox::showPopup()
{
    constexpr int kItemMargins = 12;
    const int bar = count() > maxVisibleItems() ? view()->verticalScrollBar()->sizeHint().width() : 0;
    view()->setMinimumWidth(WidestItem() + kItemMargins + bar); // the list shows what the box cuts
    QComboBox::showPopup();
}

bool ChoiceBox::eventFilter(QObject* watched, QEvent* event)
{
    const bool isClick =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease;
    if (isClick && watched == view()->viewport()) {
        const QPoint at = static_cast<QMouseEvent*>(event)->position().toPoint();
        const QModelIndex item = view()->indexAt(at);
        if (item.isValid() && !item.flags().testFlag(Qt::ItemIsEnabled)) {
            return true;
        }
    }
    return QComboBox::eventFilter(watched, event);
}

void ChoiceBox::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) {
        event->ignore(); // for OK
    } else if (isReturn) {
        showPopup();
    } else {
        QComboBox::keyPressEvent(event);
    }
}

void ChoiceBox::wheelEvent(QWheelEvent* event)
{
    event->ignore(); // what is below scrolls
}

} // namespace kestrelqt
