#include "platform/linux/port_owner_linux.h"

#include <QFile>
#include <QList>
#include <arpa/inet.h>
#include <unistd.h>

namespace korvel {

namespace {

constexpr uid_t ROOT = 0;

/// `number` in upper-case hexadecimal digits of a fixed width, as in the socket tables.
QByteArray hex(quint32 number, int width) {
    return QByteArray::number(number, 16).toUpper().rightJustified(width, '0');
}

/// The local addresses that accept connections to 127.0.0.1, highest precedence first. The kernel prints an address as
/// 32-bit words in host byte order; an IPv6 address has four.
QList<QByteArray> addressesOf(quint16 port) {
    const QByteArray loopback = hex(htonl(INADDR_LOOPBACK), 8), any = hex(0, 8);
    const QByteArray mapped = any + any + hex(htonl(0xffff), 8);
    const QByteArray end = ':' + hex(port, 4);
    return {loopback + end, any + end, mapped + loopback + end, mapped + any + end, any + any + any + any + end};
}

/// The user id of the socket that listens on this local address.
std::optional<uid_t> listenerAt(const QByteArray &table, const QByteArray &address) {
    enum Field { Local = 1, State = 3, User = 7 };
    for (qsizetype at = table.indexOf(address); at >= 0; at = table.indexOf(address, at + 1)) {
        const qsizetype begin = table.lastIndexOf('\n', at) + 1;
        const auto fields = table.mid(begin, table.indexOf('\n', at) - begin).simplified().split(' ');
        if (fields.size() > User && fields[Local] == address && fields[State] == "0A")
            return fields[User].toUInt();
    }
    return std::nullopt;
}

std::optional<QByteArray> tableIn(const QString &path) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray table = file.readAll();
        return file.error() == QFile::NoError ? std::optional(table) : std::nullopt;
    }
    return QFile::exists(path) ? std::nullopt : std::optional(QByteArray()); // the protocol is disabled
}

} // namespace

PortOwner portOwner(const SocketTables &tables, quint16 port, uid_t user) {
    for (const QByteArray &address : addressesOf(port))
        for (const auto &table : {tables.ipv4, tables.ipv6})
            if (const auto owner = table ? listenerAt(*table, address) : std::nullopt)
                return *owner == user || *owner == ROOT ? PortOwner::Trusted : PortOwner::Stranger;
    return tables.ipv4 && tables.ipv6 ? PortOwner::Nobody : PortOwner::Unknown;
}

PortOwner portOwner(quint16 port) {
    const QString ipv4 = QStringLiteral("/proc/net/tcp");
    // Without /proc, the owner is unknown.
    if (!QFile::exists(ipv4))
        return PortOwner::Unknown;
    return portOwner({.ipv4 = tableIn(ipv4), .ipv6 = tableIn(ipv4 + u'6')}, port, ::getuid());
}

} // namespace korvel
