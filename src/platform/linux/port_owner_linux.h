#pragma once

#include "ports/port_owner.h"

#include <QByteArray>
#include <optional>
#include <sys/types.h>

namespace korvel {

/// The kernel's tables of TCP sockets, /proc/net/tcp and /proc/net/tcp6 (proc_net(5)); none: cannot be read.
struct SocketTables {
    std::optional<QByteArray> ipv4;
    std::optional<QByteArray> ipv6;
};

/// Who gets a connection to `port` of 127.0.0.1 by these tables, as `user` sees it.
PortOwner portOwner(const SocketTables &tables, quint16 port, uid_t user);

} // namespace korvel
