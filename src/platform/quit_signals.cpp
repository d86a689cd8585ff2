#include "platform/quit_signals.h"

#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace korvel {

namespace {

constexpr int SIGNALS[] = {SIGTERM, SIGINT, SIGHUP};
volatile int wakeUpEnd = -1;

void onSignal(int) {
    const int saved = errno;
    const char byte = 1;
    if (wakeUpEnd >= 0 && ::write(wakeUpEnd, &byte, 1) < 0) {
    }
    errno = saved;
}

} // namespace

QuitSignals::QuitSignals(std::function<void()> quit) {
    if (::pipe(ends) != 0)
        return;
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    wakeUpEnd = ends[1];
    notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this, quit = std::move(quit)] {
        char bytes[16];
        while (::read(ends[0], bytes, sizeof bytes) > 0) {
        }
        quit();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : SIGNALS) {
        struct sigaction before {};
        ::sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) // as under nohup
            ::sigaction(number, &action, nullptr);
    }
}

QuitSignals::~QuitSignals() {
    // From here on the process is leaving: a signal need not, and must not, reach the closed pipe.
    wakeUpEnd = -1;
    notifier.reset();
    for (const int end : ends)
        ::close(end);
}

} // namespace korvel
