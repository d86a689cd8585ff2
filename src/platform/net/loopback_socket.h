#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <memory>

namespace korvel {

/// A TCP connection to a port of 127.0.0.1. Never blocks and never raises SIGPIPE. Calls its user from the event loop
/// only; the user may destroy it in a callback.
class LoopbackSocket {
public:
    class User {
    public:
        virtual ~User() = default;
        virtual void received(QByteArrayView bytes) = 0;
        /// The connection ended or could not be established.
        virtual void closed() = 0;
    };

    /// Starts to connect.
    explicit LoopbackSocket(quint16 port);
    LoopbackSocket(const LoopbackSocket &) = delete;
    LoopbackSocket &operator=(const LoopbackSocket &) = delete;
    ~LoopbackSocket();

    /// Whether the system provided a socket. Without one, there are no callbacks.
    bool isOpen() const { return fd >= 0; }
    /// Whether the connection was established.
    bool wasConnected() const { return reached; }
    /// Whether no data and no end of stream is waiting.
    bool isQuiet() const;
    void setUser(User &u) { user = &u; }
    /// Sends asynchronously.
    void write(QByteArray bytes);

private:
    void listen();
    void connected();
    void flush();
    void readSome();

    int fd = -1;
    User *user = nullptr;
    bool reached = false;
    QByteArray outgoing;
    std::unique_ptr<QSocketNotifier> arrivals; ///< While connected.
    std::unique_ptr<QSocketNotifier> room;     ///< While connecting or while data waits to be sent.
};

} // namespace korvel
