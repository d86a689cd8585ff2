#include "base/unix_process.h"

#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace korvel {

namespace {

volatile int wakeUpEnd = -1;

void onSignal(int number) {
    const int saved = errno;
    const char byte = static_cast<char>(number);
    if (wakeUpEnd >= 0 && ::write(wakeUpEnd, &byte, 1) < 0) {
    }
    errno = saved;
}

} // namespace

void openStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR); // takes the lowest free descriptor, which is this one
}

UnixSignals::UnixSignals(std::initializer_list<int> numbers, std::function<void(int)> handle) {
    if (::pipe(ends) != 0)
        return;
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    wakeUpEnd = ends[1];
    notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this, handle = std::move(handle)] {
        char number = 0;
        while (::read(ends[0], &number, 1) == 1)
            handle(number);
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : numbers) {
        struct sigaction before {};
        ::sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}

UnixSignals::~UnixSignals() {
    // The process is exiting; a late signal must not write to the closed pipe.
    wakeUpEnd = -1;
    notifier.reset();
    for (const int end : ends)
        ::close(end);
}

} // namespace korvel
