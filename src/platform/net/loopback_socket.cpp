#include "platform/net/loopback_socket.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace korvel {

namespace {

// Systems without SOCK_CLOEXEC set the flag after creation.
#ifdef SOCK_CLOEXEC
constexpr int TYPE = SOCK_STREAM | SOCK_CLOEXEC;
#else
constexpr int TYPE = SOCK_STREAM;
#endif

// Systems without MSG_NOSIGNAL use SO_NOSIGPIPE, or the program ignores SIGPIPE.
#ifdef MSG_NOSIGNAL
constexpr int NO_SIGNAL = MSG_NOSIGNAL;
#else
constexpr int NO_SIGNAL = 0;
#endif

int openSocket() {
    const int fd = ::socket(AF_INET, TYPE, 0);
    if (fd < 0)
        return fd;
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
#ifdef SO_NOSIGPIPE
    const int on = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
    return fd;
}

/// Deletes a notifier later: it may be the one that is active.
void retire(std::unique_ptr<QSocketNotifier> &notifier) {
    if (!notifier)
        return;
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
}

} // namespace

LoopbackSocket::LoopbackSocket(quint16 port) : fd(openSocket()) {
    if (fd < 0)
        return;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0) {
        listen();
    } else if (errno == EINPROGRESS || errno == EINTR) {
        room = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
        QObject::connect(room.get(), &QSocketNotifier::activated, room.get(), [this] { connected(); });
    } else {
        ::close(std::exchange(fd, -1));
    }
}

LoopbackSocket::~LoopbackSocket() {
    retire(arrivals);
    retire(room);
    if (fd >= 0)
        ::close(fd);
}

void LoopbackSocket::listen() {
    reached = true;
    arrivals = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    QObject::connect(arrivals.get(), &QSocketNotifier::activated, arrivals.get(), [this] { readSome(); });
}

void LoopbackSocket::connected() {
    retire(room);
    // Not SO_ERROR: another observer of the socket may have read and so cleared it.
    sockaddr_in other{};
    socklen_t size = sizeof other;
    if (::getpeername(fd, reinterpret_cast<sockaddr *>(&other), &size) != 0)
        return user->closed();
    listen();
    flush();
}

bool LoopbackSocket::isQuiet() const {
    char next = 0;
    return ::recv(fd, &next, 1, MSG_PEEK) < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
}

void LoopbackSocket::write(QByteArray bytes) {
    outgoing += bytes;
    if (reached)
        flush();
}

void LoopbackSocket::flush() {
    while (!outgoing.isEmpty()) {
        const ssize_t sent = ::send(fd, outgoing.constData(), static_cast<size_t>(outgoing.size()), NO_SIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent < 0 && errno != EAGAIN && errno != EWOULDBLOCK)
            outgoing.clear(); // the error is reported by the next read, after a response that may already have arrived
        if (sent < 0)
            break;
        outgoing.remove(0, sent);
    }
    if (outgoing.isEmpty())
        return retire(room);
    if (room)
        return;
    room = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
    QObject::connect(room.get(), &QSocketNotifier::activated, room.get(), [this] { flush(); });
}

void LoopbackSocket::readSome() {
    std::array<char, 16384> buffer; // one read per activation, so that a flood does not block the event loop
    const ssize_t got = ::recv(fd, buffer.data(), buffer.size(), 0);
    if (got > 0)
        return user->received(QByteArrayView(buffer.data(), got));
    if (got < 0 && (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK))
        return;
    retire(arrivals);
    user->closed();
}

} // namespace korvel
