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

void ViewWindow::SaveFrame()
{
    if (mActive >= mPanes.size()) {
        return;
    }
    const Pane& pane = mPanes[mActive];
    const std::int64_t frame = FrameIn(pane, std::max<std::int64_t>(mShown, 0));
    const QFileInfo clip(NameOf(pane.clip->File()));
    const QString proposal = clip.dir().filePath(QString("%1-%2.png").arg(clip.completeBaseName()).arg(frame));
    const QString name = QFileDialog::getSaveFileName(this, "Save the frame", proposal,
                                                      "PNG picture (*.png);;OpenEXR picture, floats (*.exr)");
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
        clips.push_back(qelcore::text::UTF8Text(pane.clip->File()));
    }
    const QString command = QString::fromStdString(
        ViewCommand(clips, mComparison ? mComparison->Movie() : "", std::max<std::int64_t>(mShown, 0)));
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
    if (event->mimeData()->hasUrls()) {
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
    if (files.empty()) {
        return;
    }
    try {
        if (files.size() == 1 && !mPanes.empty() && !IsClip(files[0])) {
            Compare(qelcore::text::UTF8Text(files[0]));
            return;
        }
        OpenClips(files);
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
