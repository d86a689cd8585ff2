#pragma once

#include <QtGlobal>

namespace korvel {

/// Whose program listens on a port of 127.0.0.1.
enum class PortOwner {
    Trusted,  ///< This user's, or root's.
    Stranger, ///< Another user's.
    Nobody,   ///< None that this user may see.
    Unknown,  ///< The system does not say.
};

/// Looks it up in the system's tables: for each new connection, never for a kept one.
PortOwner portOwner(quint16 port);

} // namespace korvel
