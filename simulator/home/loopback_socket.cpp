#include "simulator/home/loopback_socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korvel::sim {

namespace {

sockaddr_in loopbackAddress(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int newSocket() {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    if (socket >= 0)
        ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    return socket;
}

} // namespace

int boundLoopbackSocket(int port) {
    const int socket = newSocket();
    if (socket < 0)
        return -1;
    const int yes = 1;
    const sockaddr_in address = loopbackAddress(port);
    if (::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) == 0 &&
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes) == 0 &&
        ::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return socket;
    ::close(socket);
    return -1;
}

int portOf(int socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        return 0;
    return ntohs(address.sin_port);
}

bool isPortTaken(int port) {
    const int socket = newSocket();
    if (socket < 0)
        return false;
    const sockaddr_in address = loopbackAddress(port);
    const bool connected = ::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    ::close(socket);
    return connected;
}

} // namespace korvel::sim
