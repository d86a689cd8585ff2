#pragma once

#include "ports/port_owner.h"

#include <QByteArray>
#include <optional>
#include <sys/types.h>

namespace korvel {

/// The kernel's TCP socket tables, /proc/net/tcp and /proc/net/tcp6 (proc_net(5)); none: unreadable.
struct SocketTables {
    std::optional<QByteArray> ipv4;
    std::optional<QByteArray> ipv6;
};

/// The owner of connections to `port` of 127.0.0.1 according to these tables, as seen by `user`.
PortOwner portOwner(const SocketTables &tables, quint16 port, uid_t user);

} // namespace korvel
