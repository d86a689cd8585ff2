// A minimal tray program, the baseline for the tray's cost: an icon with a menu of three entries, and a request every
// 3 s over one kept-alive connection, whose response it ignores.

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QSocketNotifier>
#include <QSystemTrayIcon>
#include <QTimer>
#include <arpa/inet.h>
#include <array>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int connected(quint16 port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool good = fd >= 0 && ::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    return good ? fd : -1;
}

QIcon icon() {
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.fillRect(4, 4, 14, 14, Qt::blue);
    return pixmap;
}

} // namespace

/// floor PORT TOKEN
int main(int argc, char **argv) {
    QApplication app(argc, argv);
    if (argc != 3)
        return 64;
    QMenu menu;
    for (const char *title : {"State", "Pause", "Quit"})
        menu.addAction(QString::fromLatin1(title));
    QSystemTrayIcon item(icon());
    item.setContextMenu(&menu);
    item.show();

    const int fd = connected(static_cast<quint16>(QByteArray(argv[1]).toInt()));
    if (fd < 0)
        return 69;
    const QByteArray request =
        "GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Korvel-Token: " + QByteArray(argv[2]) + "\r\n\r\n";
    QSocketNotifier arrived(fd, QSocketNotifier::Read);
    QObject::connect(&arrived, &QSocketNotifier::activated, [fd] {
        std::array<char, 65536> response;
        if (::read(fd, response.data(), response.size()) <= 0)
            ::_exit(70);
    });
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [fd, request] {
        if (::write(fd, request.constData(), static_cast<size_t>(request.size())) != request.size())
            ::_exit(70);
    });
    poll.start(3000);
    return QApplication::exec();
}
