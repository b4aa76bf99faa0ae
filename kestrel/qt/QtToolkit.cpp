#include "QtToolkit.h"

#include "EventSeam.h"
#include "Messages.h"
#include "dialogs/ColorPickerWindow.h"
#include "dialogs/DialogWindow.h"
#include "script/PersonEvents.h"
#include "style/Theme.h"

#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/dialogs/UI_MessageBox.h>
#include <kestrel/qelui/script/ScriptRunner.h>

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace kestrelqt {

namespace {

QWidget* NativeParent(const qelui::TopLevelWindow* window)
{
    return window == nullptr ? nullptr : static_cast<QWidget*>(window->NativeWindow());
}

/// Qt requires that exceptions of event handlers are caught in `notify`.
class Application final : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        bool isHandled = true;
        AtSeam([&] { isHandled = QApplication::notify(receiver, event); });
        return isHandled;
    }
};

/// Shows a modal window until it is closed. @return its result. Throws what an event threw during that time.
int Execute(QDialog& dialog)
{
    EventSeam seam([&dialog] { dialog.reject(); });
    const int result = dialog.exec();
    seam.Rethrow();
    return result;
}

/// Runs `act` as soon as the modal window that is about to open has its event loop.
template <class Act>
void OnceOpen(QObject& window, Act act)
{
    QTimer::singleShot(0, &window, [act] { AtSeam(act); });
}

/// Lets a script answer: enters the name in the dialog's own field and presses Open or Save. If the dialog
/// refuses the name, for instance of a file to open that does not exist, it is closed as accepted.
void AnswerFileDialog(QFileDialog& dialog, const QString& path)
{
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    OnceOpen(dialog, [&dialog, path] {
        if (auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))) {
            name->setText(path);
        }
        dialog.setFileMode(QFileDialog::AnyFile);
        QMetaObject::invokeMethod(&dialog, "accept");
        if (dialog.isVisible()) {
            static_cast<QDialog&>(dialog).done(QDialog::Accepted);
        }
    });
}

} // namespace

QtToolkit::QtToolkit()
{
    SendQtMessagesToLog();
    if (QCoreApplication::instance() == nullptr) {
        // Static, because they must outlive the application.
        static int argumentCount = 1;
        static char name[] = "kestrel";
        static char* arguments[] = {name, nullptr};
        mApplication = std::make_unique<Application>(argumentCount, arguments);
        QApplication::setQuitOnLastWindowClosed(false);
    }
}

QtToolkit::~QtToolkit() = default;

void QtToolkit::RunModal(qelui::UI_Dialog& dialog)
{
    ApplyTheme(*qApp, dialog.GetDrawSupplier().theme);
    DialogWindow window(dialog);
    window.Run();
}

std::optional<std::u16string> QtToolkit::RunFileDialog(const qelui::FileDialogRequest& request)
{
    QFileDialog dialog(NativeParent(request.parent), QString::fromStdString(request.title),
                       QString::fromStdString(qelcore::text::UTF8Text(request.folder)));
    dialog.setAcceptMode(request.saveAs ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(request.saveAs ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    QStringList filters;
    for (const auto& filter : request.filters) {
        filters << QStringLiteral("%1 (*.%2)")
                       .arg(QString::fromStdString(filter.description),
                            QString::fromStdString(filter.extension));
    }
    dialog.setNameFilters(filters);
    if (request.saveAs) {
        if (!request.filters.empty()) {
            dialog.setDefaultSuffix(QString::fromStdString(request.filters.front().extension));
        }
        dialog.selectFile(QString::fromStdU16String(request.proposedName));
    }
    if (request.script != nullptr) {
        auto answer = request.script->TakeFileAnswer();
        if (answer) {
            AnswerFileDialog(dialog, QString::fromStdU16String(*answer));
        } else {
            dialog.setOption(QFileDialog::DontUseNativeDialog);
            OnceOpen(dialog, [&dialog] { dialog.reject(); });
        }
        Execute(dialog);
        return answer;
    }
    if (Execute(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return QFileInfo(dialog.selectedFiles().front()).absoluteFilePath().toStdU16String();
}

int QtToolkit::RunMessageBox(const qelui::MessageBoxRequest& request)
{
    QMessageBox box(NativeParent(request.parent));
    box.setIcon(request.icon == qelui::dialogs::kIconWarning ? QMessageBox::Warning : QMessageBox::Question);
    box.setWindowTitle(QString::fromStdString(request.title));
    box.setText(QString::fromStdString(request.text));
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    const bool yesIsDefault = request.defaultButton == qelui::dialogs::kButtonYes;
    box.setDefaultButton(yesIsDefault ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    if (request.script != nullptr) {
        QAbstractButton* const answer =
            box.button(request.script->TakeBoxAnswer() ? QMessageBox::Yes : QMessageBox::No);
        OnceOpen(box, [answer] { Click(*answer, answer->rect().center()); });
    }
    return Execute(box) == QMessageBox::Yes ? qelui::dialogs::kButtonYes : qelui::dialogs::kButtonNo;
}

std::optional<qelui::sharedui::PickerColor> QtToolkit::RunColorPicker(const qelui::ColorPickerRequest& request)
{
    const auto alpha = request.offersAlpha ? ColorPickerWindow::Alpha::Offered : ColorPickerWindow::Alpha::Kept;
    ColorPickerWindow picker(request.color, alpha, NativeParent(request.parent));
    if (request.script != nullptr) {
        const auto answer = request.script->TakeColorAnswer();
        OnceOpen(picker, [&picker, answer] {
            if (!answer) {
                Click(picker.CancelButton(), picker.CancelButton().rect().center());
                return;
            }
            const float channels[] = {answer->red, answer->green, answer->blue, answer->alpha};
            for (std::size_t channel = 0; channel < ColorPickerWindow::kChannels; ++channel) {
                QLineEdit& field = picker.Field(channel);
                if (field.isHidden()) {
                    continue; // a script may give alpha also where it is kept
                }
                Focus(field);
                field.selectAll();
                TypeText(field, ShortestText(channels[channel]));
            }
            Click(picker.OkButton(), picker.OkButton().rect().center());
        });
    }
    if (Execute(picker) != QDialog::Accepted) {
        return std::nullopt;
    }
    return picker.Color();
}

} // namespace kestrelqt
