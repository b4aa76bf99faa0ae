#include "Accessibility.h"
#include "Paths.h"
#include "ViewWindow.h"
#include "WindowRequest.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>

#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QPalette>
#include <QPixmap>
#include <QStyleFactory>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

namespace tessel::view {
namespace {

bool IsSet(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): before any thread
    return value != nullptr && *value != '\0';
}

std::string LineOf(const QString& text)
{
    return importhost::OneLine(text.toStdString());
}

/// One line of ours, and no core.
[[noreturn]] void EndWith(const std::string& line)
{
    std::fprintf(stderr, "tessel: %s\n", line.c_str());
    std::_Exit(1);
}

/// Qt's warnings are for developers.
void TakeMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    if (type == QtFatalMsg) {
        EndWith(LineOf(text));
    }
    if (type == QtCriticalMsg) {
        std::fprintf(stderr, "tessel: %s\n", LineOf(text).c_str());
    }
}

/// While Qt looks for a display. Where it finds none it warns why, and then ends the process with a text of
/// several lines that gives no reason.
void TakeReason(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    static std::string reasons;
    const bool isOfPlatform =
        context.category != nullptr && std::string_view(context.category).starts_with("qt.qpa.");
    if (type == QtWarningMsg && isOfPlatform) {
        reasons += (reasons.empty() ? "" : "; ") + LineOf(text);
    } else if (type == QtFatalMsg) {
        EndWith("no window can be opened: " + (reasons.empty() ? LineOf(text) : reasons));
    } else {
        TakeMessage(type, context, text);
    }
}

/// Neutral greys: coloured surroundings change how the colours of a picture look.
void UseNeutralColors(QApplication& application, bool isLight)
{
    application.setStyle(QStyleFactory::create("Fusion"));
    const auto grey = [isLight](int dark, int light) {
        const int value = isLight ? light : dark;
        return QColor(value, value, value);
    };
    QPalette palette;
    palette.setColor(QPalette::Window, grey(0x26, 0xE8));
    palette.setColor(QPalette::Base, grey(0x1A, 0xFA));
    palette.setColor(QPalette::AlternateBase, grey(0x22, 0xF0));
    palette.setColor(QPalette::Button, grey(0x34, 0xDC));
    palette.setColor(QPalette::Mid, grey(0x5A, 0x9A));
    palette.setColor(QPalette::WindowText, grey(0xE4, 0x10));
    palette.setColor(QPalette::Text, grey(0xE4, 0x10));
    palette.setColor(QPalette::ButtonText, grey(0xE4, 0x10));
    palette.setColor(QPalette::ToolTipBase, grey(0x1A, 0xFA));
    palette.setColor(QPalette::ToolTipText, grey(0xE4, 0x10));
    palette.setColor(QPalette::Disabled, QPalette::Text, grey(0x80, 0x80));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, grey(0x80, 0x80));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, grey(0x80, 0x80));
    palette.setColor(QPalette::Highlight, QColor(0x1F, 0x6F, 0xC4));
    palette.setColor(QPalette::HighlightedText, QColor(0xFF, 0xFF, 0xFF));
    application.setPalette(palette);
}

/// @throws UnknownKey
QKeySequence KeysNamed(const std::string& name)
{
    QKeySequence keys(QString::fromStdString(name));
    if (keys.isEmpty() || keys[0].key() == Qt::Key_unknown) {
        throw UnknownKey("--press " + name + ": there is no such key; write Right, Shift+Right, F or 7");
    }
    return keys;
}

/// Presses keys when the window has come to rest, then takes the picture of it.
class Unattended {
public:
    Unattended(ViewWindow& window, const WindowRequest& request) : mWindow(window), mRequest(request)
    {
        mWindow.onSettled = [this] {
            // Later, when the window is painted; and once, however often it comes to rest until then.
            if (!mIsWaiting) {
                mIsWaiting = true;
                QTimer::singleShot(0, &mWindow, [this] { GoOn(); });
            }
        };
    }

    [[nodiscard]] const std::exception_ptr& Failure() const noexcept { return mFailure; }

private:
    void GoOn()
    {
        mIsWaiting = false;
        if (!mWindow.IsSettled() || mIsDone) {
            return;
        }
        try {
            if (mNextKey < mRequest.keys.size()) {
                Press(mRequest.keys[mNextKey++]);
                mIsWaiting = true;
                QTimer::singleShot(20, &mWindow, [this] { GoOn(); });
            } else if (mRequest.playSeconds > 0) {
                mIsDone = true;
                Play();
            } else if (!mRequest.screenshot.empty()) {
                mIsDone = true;
                TakePicture();
                QApplication::quit();
            }
        } catch (...) {
            mIsDone = true;
            mFailure = std::current_exception();
            QApplication::quit();
        }
    }

    void Press(const std::string& name)
    {
        const QKeySequence keys = KeysNamed(name);
        const QKeyCombination key = keys[0];
        QWidget* const focused = QApplication::focusWidget();
        QWidget* const target = focused != nullptr ? focused : &mWindow;
        const QString text = name.size() == 1 ? QString::fromStdString(name) : QString();
        // Shortcuts are found where the window system delivers keys, so that they are pressed there.
        QKeyEvent shortcut(QEvent::ShortcutOverride, key.key(), key.keyboardModifiers(), text);
        shortcut.ignore();
        QApplication::sendEvent(target, &shortcut);
        if (!shortcut.isAccepted()) {
            for (QAction* const action : mWindow.findChildren<QAction*>()) {
                if (action->shortcuts().contains(keys) && action->isEnabled()) {
                    action->trigger();
                    return;
                }
            }
        }
        QKeyEvent press(QEvent::KeyPress, key.key(), key.keyboardModifiers(), text);
        QApplication::sendEvent(target, &press);
        QKeyEvent release(QEvent::KeyRelease, key.key(), key.keyboardModifiers(), text);
        QApplication::sendEvent(target, &release);
    }

    void Play()
    {
        mWindow.PlayForwards();
        QTimer::singleShot(static_cast<int>(mRequest.playSeconds * 1000), &mWindow, [this] {
            const std::string text = mWindow.PlayingText();
            mWindow.StopPlaying();
            try {
                mRequest.tell(text);
                if (!mRequest.screenshot.empty()) {
                    TakePicture();
                }
            } catch (...) {
                mFailure = std::current_exception();
            }
            QApplication::quit();
        });
    }

    void TakePicture()
    {
        const QString name = NameOf(mRequest.screenshot);
        if (!mWindow.grab().save(name)) {
            throw importhost::HostError(
                importhost::DisplayName(mRequest.screenshot) +
                ": the screenshot cannot be written; name a .png file in a folder that exists");
        }
    }

    ViewWindow& mWindow;
    const WindowRequest& mRequest;
    std::size_t mNextKey = 0;
    bool mIsWaiting = false;
    bool mIsDone = false;
    std::exception_ptr mFailure;
};

} // namespace

void RunWindow(const WindowRequest& request)
{
    for (const std::string& name : request.keys) {
        static_cast<void>(KeysNamed(name));
    }
    const bool isUnattended = !request.screenshot.empty() || request.playSeconds > 0;
    if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY") && !IsSet("QT_QPA_PLATFORM")) {
        if (!isUnattended) {
            throw importhost::HostError(
                "there is no display (DISPLAY and WAYLAND_DISPLAY are not set), so no window "
                "can be opened; --screenshot FILE needs none");
        }
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qInstallMessageHandler(TakeReason);
    int count = 1;
    char name[] = "tessel-view";
    char* arguments[] = {name, nullptr};
    QApplication application(count, arguments);
    qInstallMessageHandler(TakeMessage);
    QApplication::setApplicationDisplayName("Tessel");
    QApplication::setDesktopFileName("tessel");
    UseNeutralColors(application, request.isLight);
    InstallAccessibleRoles();
    ViewWindow window(request);
    window.resize(1440, 900);
    if (!isUnattended) {
        window.RestoreLayout();
    }
    if (request.width > 0) {
        window.resize(request.width, request.height);
    }
    std::unique_ptr<Unattended> unattended;
    if (isUnattended || !request.keys.empty()) {
        unattended = std::make_unique<Unattended>(window, request);
    }
    window.show();
    QApplication::exec();
    if (unattended && unattended->Failure()) {
        std::rethrow_exception(unattended->Failure());
    }
}

} // namespace tessel::view
