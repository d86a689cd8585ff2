#include "simulator/unix_signals.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace korvel::sim {

namespace {

std::array<int, 2> wakePipe{-1, -1};

void onSignal(int number) {
    const int keptError = errno;
    const auto byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, 1);
    errno = keptError;
}

int makeWakePipe() {
    if (::pipe(wakePipe.data()) != 0)
        return -1;
    for (const int end : wakePipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return wakePipe[0];
}

} // namespace

UnixSignals::UnixSignals(std::initializer_list<int> signalNumbers, std::function<void(int)> handle)
    : notifier(makeWakePipe(), QSocketNotifier::Read) {
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [handle = std::move(handle)] {
        unsigned char number = 0;
        while (::read(wakePipe[0], &number, 1) == 1)
            handle(number);
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : signalNumbers)
        ::sigaction(number, &action, nullptr);
}

} // namespace korvel::sim
