/// What the player's window does with files: saving, editing, following, dropping.

#include "FrameSaving.h"
#include "Paths.h"
#include "ViewWindow.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/view/model/CommandText.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <exception>

namespace tessel::view {
namespace {

/// Asks for a file; a name without an ending gets that of the chosen kind. @return empty: cancelled
QString AskWhereToSave(QWidget* parent, const QString& proposal)
{
    const QString png = "PNG picture (*.png)";
    const QString exr = "OpenEXR picture, floats (*.exr)";
    QFileDialog dialog(parent, "Save the frame");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({png, exr});
    dialog.setDefaultSuffix("png");
    dialog.selectFile(proposal);
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog,
                     [&](const QString& kind) { dialog.setDefaultSuffix(kind == exr ? "exr" : "png"); });
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

/// Names that lead to the file from any folder.
std::string WholeName(const std::filesystem::path& file)
{
    return qelcore::text::UTF8Text(std::filesystem::absolute(file).lexically_normal());
}

} // namespace

void ViewWindow::SaveFrame()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    const Pane& pane = mPanes[mActive];
    const std::int64_t frame = FrameIn(pane, std::max<std::int64_t>(mShown, 0));
    const QFileInfo clip(NameOf(pane.clip->File()));
    const QString proposal = clip.dir().filePath(QString("%1-%2.png").arg(clip.completeBaseName()).arg(frame));
    const QString name = AskWhereToSave(this, proposal);
    if (name.isEmpty()) {
        return;
    }
    try {
        SaveFrameAs(pane.clip->Source(), frame, PathOf(name));
        Say("Saved to " + name);
    } catch (const std::exception& error) {
        Say(error.what());
    }
}

void ViewWindow::CopyCommand()
{
    std::vector<std::string> clips;
    for (const Pane& pane : mPanes) {
        clips.push_back(WholeName(pane.clip->File()));
    }
    const std::string movie = mComparison ? WholeName(qelcore::text::PathOf(mComparison->Movie())) : "";
    const std::string plugin = mPlugin.empty() ? "" : WholeName(mPlugin);
    const QString command =
        QString::fromStdString(ViewCommand(clips, movie, std::max<std::int64_t>(mShown, 0), plugin));
    QApplication::clipboard()->setText(command);
    Say("Copied: " + command);
}

void ViewWindow::EditSettings()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    if (mSettings && mSettings->state() != QProcess::NotRunning) {
        Say("The settings dialog is already open");
        return;
    }
    // The dialog is the program's own, in a process of its own; the picture follows the file that it writes.
    mSettings = std::make_unique<QProcess>();
    QStringList arguments{"edit", NameOf(mPanes[mActive].clip->File())};
    if (!mPlugin.empty()) {
        arguments << "--plugin" << NameOf(mPlugin);
    }
    QObject::connect(mSettings.get(), &QProcess::finished, this,
                     [this](int code, QProcess::ExitStatus /*status*/) {
                         const QString said = QString::fromUtf8(mSettings->readAllStandardError()).trimmed();
                         if (code != 0 || !said.isEmpty()) {
                             Say(said.section('\n', -1));
                         }
                     });
    QObject::connect(mSettings.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            Say("The settings dialog cannot be started: " + mSettings->errorString());
        }
    });
    mSettings->start(QCoreApplication::applicationDirPath() + "/" TESSEL_FROM_VIEW, arguments);
}

bool ViewWindow::IsClip(const std::filesystem::path& file) const
{
    try {
        static_cast<void>(importhost::FileTypeOf(*mImporter, file));
        return true;
    } catch (const importhost::HostError&) {
        return false;
    }
}

void ViewWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); })) {
        event->acceptProposedAction();
    }
}

void ViewWindow::dropEvent(QDropEvent* event)
{
    std::vector<std::filesystem::path> files;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) {
            files.push_back(PathOf(url.toLocalFile()));
        }
    }
    event->acceptProposedAction();
    OpenFiles(files);
}

void ViewWindow::OpenFiles(const std::vector<std::filesystem::path>& files)
{
    std::vector<std::filesystem::path> clips;
    std::vector<std::filesystem::path> movies;
    for (const std::filesystem::path& file : files) {
        (IsClip(file) ? clips : movies).push_back(file);
    }
    try {
        if (!clips.empty()) {
            OpenClips(clips);
        }
        if (!movies.empty() && mPanes.empty()) {
            Say(TextOfPath(movies[0].filename()) +
                " is no clip: open the clip that it was made of first, or both together");
        } else if (!movies.empty()) {
            Compare(qelcore::text::UTF8Text(movies[0]));
            if (movies.size() > 1) {
                Say("One movie is compared at a time: " + TextOfPath(movies[0].filename()));
            }
        }
    } catch (const std::exception& error) {
        Say(error.what());
    }
}

void ViewWindow::ReloadChanged(const QString& file)
{
    for (Pane& pane : mPanes) {
        const QString name = NameOf(pane.clip->File());
        if (name != file) {
            continue;
        }
        mWatcher.addPath(file); // a file that was replaced is another one
        try {
            Pane fresh = MakePane(pane.clip->File());
            fresh.view = pane.view;
            pane = std::move(fresh);
        } catch (const std::exception& error) {
            Say(QString("%1; the earlier picture stays").arg(error.what()));
            return;
        }
    }
    if (mComparison && NameOf(mPanes[0].clip->File()) == file) {
        const std::string movie = mComparison->Movie();
        try {
            Compare(movie);
        } catch (const std::exception& error) {
            Say(error.what());
        }
    }
    TakeScale();
    Activate(mActive);
    Tick();
}

} // namespace tessel::view
