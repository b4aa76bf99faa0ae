#include "Interrupt.h"

#include <array>
#include <atomic>
#include <csignal>

namespace tessel::exporting {
namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler can reach nothing but a global.
std::atomic<int> gSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "or a handler could not touch it");

void Note(int signal)
{
    gSignal = signal;
}

} // namespace

InterruptGuard::InterruptGuard()
{
    gSignal = 0;
    struct sigaction action {};
    action.sa_handler = Note;
    sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESETHAND); // the second one is not noted but acts
    for (const int signal : kSignals) {
        struct sigaction current {};
        sigaction(signal, nullptr, &current);
        if (current.sa_handler != SIG_IGN) { // nohup and background jobs ignore some of them
            sigaction(signal, &action, nullptr);
        }
    }
}

InterruptGuard::~InterruptGuard()
{
    for (const int signal : kSignals) {
        struct sigaction current {};
        sigaction(signal, nullptr, &current);
        if (current.sa_handler == Note) {
            std::signal(signal, SIG_DFL);
        }
    }
}

bool InterruptGuard::Requested() noexcept
{
    return gSignal != 0;
}

void InterruptGuard::ThrowIfRequested()
{
    if (Requested()) {
        throw Interrupted();
    }
}

void InterruptGuard::EndAsSignalled() noexcept
{
    if (const int signal = gSignal.load(); signal != 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
}

} // namespace tessel::exporting
