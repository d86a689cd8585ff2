#pragma once

#include <QtGlobal>

namespace korvel {

/// Owner of the program that listens on a port of 127.0.0.1.
enum class PortOwner {
    Trusted,  ///< This user or root.
    Stranger, ///< Another user.
    Nobody,   ///< No listener is visible to this user.
    Unknown,  ///< The system does not report it.
};

/// Reads the system's socket tables. Called for each new connection, never for a reused one.
PortOwner portOwner(quint16 port);

} // namespace korvel
