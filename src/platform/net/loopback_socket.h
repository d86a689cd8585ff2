#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <memory>

namespace korvel {

/// A TCP connection to a port of 127.0.0.1 that never blocks and never raises SIGPIPE. Tells its user from the event
/// loop only; the user may destroy it then.
class LoopbackSocket {
public:
    class User {
    public:
        virtual ~User() = default;
        virtual void received(QByteArrayView bytes) = 0;
        /// The connection ended, or none could be made.
        virtual void closed() = 0;
    };

    /// Begins to connect.
    explicit LoopbackSocket(quint16 port);
    LoopbackSocket(const LoopbackSocket &) = delete;
    LoopbackSocket &operator=(const LoopbackSocket &) = delete;
    ~LoopbackSocket();

    /// Whether the system gave it a connection to begin with; without one it tells nothing.
    bool isOpen() const { return fd >= 0; }
    /// Whether the other side was reached.
    bool wasConnected() const { return reached; }
    /// Whether nothing, not even its end, waits to be read.
    bool isQuiet() const;
    void setUser(User &u) { user = &u; }
    /// Writes as fast as the other side takes it.
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
    std::unique_ptr<QSocketNotifier> room;     ///< While the connection is made, or bytes wait.
};

} // namespace korvel
