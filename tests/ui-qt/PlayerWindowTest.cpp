/// The player's window as a person works it, on the platform without a screen.

#include <kestrel/importhost/Importer.h>
#include <tessel/export/Render.h>
#include <tessel/export/plan/Container.h>
#include <tessel/view/window/PictureView.h>
#include <tessel/view/window/Timeline.h>
#include <tessel/view/window/ViewWindow.h>

#include <gtest/gtest.h>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QSettings>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace tessel::view {
namespace {

namespace fs = std::filesystem;

std::shared_ptr<const importhost::Importer> Plugin()
{
    static const std::shared_ptr<const importhost::Importer> importer =
        importhost::Importer::Load(TEST_PLUGIN, importhost::TestingPlugins::Allowed);
    return importer;
}

class PlayerWindow : public testing::Test {
protected:
    PlayerWindow()
    {
        static int count = 1;
        static char name[] = "player-window-test";
        static char* arguments[] = {name, nullptr};
        if (qApp == nullptr) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
            // Never destroyed: other tests go on with it.
            mApplication = new QApplication(count, arguments); // NOLINT(cppcoreguidelines-owning-memory)
        }
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, mFolder.path());
    }

    /// Two field colours, 64 pixels wide and 48 high, 50 frames of 1/25 second.
    fs::path Clip(const std::string& name, const std::string& upperRed = "1")
    {
        fs::path file = fs::path(mFolder.path().toStdString()) / name;
        const std::string green = R"({"mAlphaPart": 1, "mRedPart": 0, "mGreenPart": 1, "mBluePart": 0})";
        std::ofstream out(file);
        out << R"({"mVersion": 1, "mPixelFormat": 1634887522, "mFrameWidth": 64, "mFrameHeight": 48,
            "mFramePAR": {"numerator": 1, "denominator": 1}, "mFieldType": 1, "mRenderFormat": 0,
            "mDrawFrameFieldNumber": false, "mVideoDuration": {"ticks": 508032000000},
            "mVideoFrameRate": {"ticksperframe": 10160640000}, "mUpperFieldColor": {"mAlphaPart": 1, "mRedPart": )"
            << upperRed << R"(, "mGreenPart": 0.5, "mBluePart": 0.25})";
        for (const char* const key : {"mLowerFieldColor", "mTopGradiantColorStart", "mTopGradiantColorEnd",
                                      "mBottomGradiantColorStart", "mBottomGradiantColorEnd"}) {
            out << ", \"" << key << "\": " << green;
        }
        out << "}";
        return file;
    }

    fs::path Movie(const fs::path& clip, const std::string& name)
    {
        const ViewedClip viewed(Plugin(), clip);
        exporting::RenderJob job;
        job.output.container = exporting::ContainerNamed("mkv");
        job.output.streams = exporting::Streams::VideoOnly;
        job.target = clip.parent_path() / name;
        job.frames = {.first = 0, .count = 10};
        static_cast<void>(exporting::Render(viewed.Source(), job));
        return job.target;
    }

    ViewWindow& Open(const std::vector<fs::path>& clips, const std::string& against = "")
    {
        WindowRequest request;
        request.importer = Plugin();
        request.clips = clips;
        request.against = against;
        mWindow = std::make_unique<ViewWindow>(request);
        mWindow->resize(1000, 700);
        mWindow->show();
        Settle();
        return *mWindow;
    }

    /// Waits until what should be shown is shown; a window without a clip keeps its first title.
    void Settle()
    {
        QElapsedTimer clock;
        clock.start();
        do {
            QApplication::processEvents(QEventLoop::AllEvents, 20);
        } while (!mWindow->IsSettled() && mWindow->windowTitle() != "Tessel" && clock.elapsed() < 30'000);
        for (int i = 0; i < 5; ++i) {
            QApplication::processEvents();
        }
    }

    void Choose(const QString& entry)
    {
        for (QAction* const action : mWindow->findChildren<QAction*>()) {
            if (action->text() == entry) {
                action->trigger();
                Settle();
                return;
            }
        }
        FAIL() << "there is no menu entry " << entry.toStdString();
    }

    void Drop(const std::vector<fs::path>& files)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const fs::path& file : files) {
            urls << QUrl::fromLocalFile(QString::fromStdString(file.string()));
        }
        data.setUrls(urls);
        QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(mWindow.get(), &enter);
        ASSERT_TRUE(enter.isAccepted());
        QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(mWindow.get(), &drop);
        Settle();
    }

    /// The pictures that are in sight, from the left.
    std::vector<PictureView*> Pictures()
    {
        std::vector<PictureView*> found;
        for (QWidget* const widget : mWindow->findChildren<QWidget*>()) {
            auto* const picture = dynamic_cast<PictureView*>(widget);
            if (picture != nullptr && picture->isVisible()) {
                found.push_back(picture);
            }
        }
        std::sort(found.begin(), found.end(),
                  [](const auto* left, const auto* right) { return left->x() < right->x(); });
        return found;
    }

    /// What is heard of the widget whose name begins so.
    QString Heard(const QString& name)
    {
        for (const QWidget* const widget : mWindow->findChildren<QWidget*>()) {
            if (widget->accessibleName().startsWith(name)) {
                return widget->accessibleName();
            }
        }
        return {};
    }

    QTemporaryDir mFolder;
    std::unique_ptr<ViewWindow> mWindow;

private:
    QApplication* mApplication = nullptr;
};

TEST_F(PlayerWindow, DroppedDocumentsStandSideBySide)
{
    Open({});
    Drop({Clip("one.tessel"), Clip("two.tessel")});
    const auto pictures = Pictures();
    ASSERT_EQ(pictures.size(), 2U);
    EXPECT_TRUE(pictures[0]->Content().title.startsWith("one.tessel"));
    EXPECT_TRUE(pictures[1]->Content().title.startsWith("two.tessel"));
    EXPECT_EQ(pictures[1]->Content().image.pixel(0, 0), qRgb(255, 128, 64));
    EXPECT_EQ(pictures[1]->Content().image.pixel(0, 1), qRgb(0, 255, 0));
}

TEST_F(PlayerWindow, ADroppedMovieIsComparedWithTheFirstClip)
{
    const fs::path clip = Clip("clip.tessel");
    const fs::path movie = Movie(clip, "returned.mkv");
    Open({clip});
    Drop({movie});
    const auto pictures = Pictures();
    ASSERT_EQ(pictures.size(), 3U);
    EXPECT_TRUE(pictures[1]->Content().title.startsWith("picture 0"));
    EXPECT_TRUE(pictures[2]->Content().title.startsWith("difference x1"));
    EXPECT_EQ(pictures[2]->Content().image.pixel(5, 5), qRgb(128, 128, 128));
}

TEST_F(PlayerWindow, ADocumentAndItsMovieAreDroppedTogether)
{
    const fs::path clip = Clip("clip.tessel");
    const fs::path movie = Movie(clip, "returned.mkv");
    Open({});
    Drop({movie, clip});
    EXPECT_EQ(Pictures().size(), 3U);
}

TEST_F(PlayerWindow, AMovieAloneIsRefusedWithAHint)
{
    const fs::path movie = Movie(Clip("clip.tessel"), "returned.mkv");
    Open({});
    Drop({movie});
    EXPECT_EQ(mWindow->statusBar()->currentMessage().toStdString(),
              "returned.mkv is no clip: open the clip that it was made of first, or both together");
}

TEST_F(PlayerWindow, AFileThatIsNoMovieLeavesTheComparisonAsItIs)
{
    const fs::path clip = Clip("clip.tessel");
    const fs::path movie = Movie(clip, "returned.mkv");
    const fs::path text = clip.parent_path() / "notes.txt";
    std::ofstream(text) << "no movie";
    Open({clip}, movie.string());
    ASSERT_EQ(Pictures().size(), 3U);
    Drop({text});
    EXPECT_EQ(Pictures().size(), 3U);
    EXPECT_TRUE(mWindow->statusBar()->currentMessage().contains("notes.txt"));
}

TEST_F(PlayerWindow, ThePointerReadsThePictureThatItIsOver)
{
    Open({Clip("one.tessel"), Clip("two.tessel", "0")});
    PictureView* const second = Pictures().at(1);
    const QPointF middle = QRectF(second->rect()).center();
    QMouseEvent move(QEvent::MouseMove, middle, second->mapToGlobal(middle), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(second, &move);
    Choose("One frame on"); // the picture changes, the pointer stays
    const QString text = Heard("Pixel under the pointer");
    // Half way down the rows of both fields meet; only the second clip has no red in either.
    EXPECT_TRUE(text.contains("R' 0 ")) << text.toStdString();
}

TEST_F(PlayerWindow, TheCopiedCommandShowsTheSameFrameFromAnyFolder)
{
    const fs::path clip = Clip("it's.tessel");
    const fs::path here = fs::current_path();
    fs::current_path(clip.parent_path());
    Open({"it's.tessel"});
    Choose("Ten frames on");
    Choose("&Copy the command for this frame");
    fs::current_path(here);
    const std::string folder = fs::canonical(clip.parent_path()).string();
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              "tessel view '" + folder + "/it'\\''s.tessel' --frame 10");
}

/// Fills in the next file dialog and accepts it.
void AnswerFileDialog(const QString& kind, const QString& name)
{
    auto* const timer = new QTimer(qApp); // NOLINT(cppcoreguidelines-owning-memory): the application's
    QObject::connect(timer, &QTimer::timeout, timer, [timer, kind, name] {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            return;
        }
        timer->deleteLater();
        if (!kind.isEmpty()) {
            dialog->selectNameFilter(kind);
            emit dialog->filterSelected(kind);
        }
        if (!name.isEmpty()) {
            dialog->findChild<QLineEdit*>("fileNameEdit")->setText(name);
        }
        QMetaObject::invokeMethod(dialog, "accept");
    });
    timer->start(10);
}

TEST_F(PlayerWindow, TheSavedPictureHasThePluginsCodes)
{
    const fs::path clip = Clip("clip.tessel");
    Open({clip});
    // A percent sign is a letter like others in a name of one file.
    const QString file = mFolder.filePath("100% of frame %d.png");
    AnswerFileDialog("", file);
    Choose("Save the &frame as...");
    EXPECT_EQ(mWindow->statusBar()->currentMessage(), "Saved to " + file);
    const QImage saved(file);
    ASSERT_EQ(saved.size(), QSize(64, 48));
    EXPECT_EQ(saved.pixel(63, 46), qRgb(255, 128, 64));
    EXPECT_EQ(saved.pixel(63, 47), qRgb(0, 255, 0));
}

TEST_F(PlayerWindow, ANameWithoutAnEndingGetsThatOfTheChosenKind)
{
    Open({Clip("clip.tessel")});
    AnswerFileDialog("OpenEXR picture, floats (*.exr)", mFolder.filePath("still"));
    Choose("Save the &frame as...");
    const fs::path folder(mFolder.path().toStdString());
    ASSERT_TRUE(fs::exists(folder / "still.exr")) << mWindow->statusBar()->currentMessage().toStdString();
    std::ifstream file(folder / "still.exr", std::ios::binary);
    std::string magic(4, '\0');
    file.read(magic.data(), 4);
    EXPECT_EQ(magic, "\x76\x2f\x31\x01");
}

TEST_F(PlayerWindow, SizeAndPanelsAreRemembered)
{
    const fs::path clip = Clip("clip.tessel");
    Open({clip}).RestoreLayout();
    mWindow->resize(1111, 777);
    Choose("Meters");
    mWindow->close();
    Open({clip}).RestoreLayout();
    EXPECT_EQ(mWindow->size(), QSize(1111, 777));
    EXPECT_FALSE(mWindow->findChild<QDockWidget*>("meters")->isVisible());
    EXPECT_TRUE(mWindow->findChild<QDockWidget*>("scopes")->isVisible());
}

TEST_F(PlayerWindow, FindingsAreInSightWheneverThereIsAMovie)
{
    const fs::path clip = Clip("clip.tessel");
    const fs::path movie = Movie(clip, "returned.mkv");
    Open({clip}).RestoreLayout(); // without a movie
    mWindow->close();
    Open({clip}, movie.string()).RestoreLayout();
    EXPECT_TRUE(mWindow->findChild<QDockWidget*>("findings")->isVisible());
    mWindow->close();
    Open({clip}).RestoreLayout();
    EXPECT_FALSE(mWindow->findChild<QDockWidget*>("findings")->isVisible());
}

TEST_F(PlayerWindow, AssistiveToolsMoveTheTimeline)
{
    Open({Clip("clip.tessel")});
    auto* const timeline = dynamic_cast<Timeline*>(mWindow->findChild<QSlider*>());
    ASSERT_NE(timeline, nullptr);
    QAccessibleInterface* const heard = QAccessible::queryAccessibleInterface(timeline);
    ASSERT_NE(heard->valueInterface(), nullptr);
    heard->valueInterface()->setCurrentValue(7);
    Settle();
    EXPECT_EQ(mWindow->windowTitle(), "clip.tessel, frame 7 of 50, 00:00:00:07");
    EXPECT_EQ(heard->valueInterface()->currentValue(), 7);
    EXPECT_EQ(heard->valueInterface()->maximumValue(), 49);
}

TEST_F(PlayerWindow, MessagesHaveTheWholeWidthOfTheWindow)
{
    Open({Clip("clip.tessel")});
    mWindow->resize(700, 500);
    Choose("Mark codes out of range");
    Choose("&Copy the command for this frame");
    for (const QWidget* const widget : mWindow->statusBar()->findChildren<QWidget*>()) {
        EXPECT_TRUE(!widget->isVisible() || widget->width() < 50) << widget->accessibleName().toStdString();
    }
}

} // namespace
} // namespace tessel::view
