/// The movie beside the clip, in the player's window.

#include "Images.h"
#include "ViewWindow.h"

#include <QDockWidget>
#include <QListWidget>
#include <QSplitter>
#include <algorithm>
#include <utility>

namespace tessel::view {

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
    // Made first: where it cannot be opened, the earlier comparison stays.
    auto comparison = std::make_unique<Comparison>(mPanes[0].clip, movie, [this] {
        QMetaObject::invokeMethod(
            this, [this] { Tick(); }, Qt::QueuedConnection);
    });
    StopComparing();
    mComparison = std::move(comparison);
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
    difference.title = QString("difference x%1   mean %2, most %3 (white: 255)%4")
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

} // namespace tessel::view
