#include "platform/mac/native_sockets_mac.h"

#include <algorithm>
#include <libproc.h>
#include <sys/proc_info.h>

namespace korvel::native {

namespace {

/// Number of complete elements in a result size in bytes; 0 or less means failure.
template <class T>
std::size_t elementsIn(int bytes) {
    return static_cast<std::size_t>(std::max(bytes, 0)) / sizeof(T);
}

/// Spare elements for those that appear between the two calls.
constexpr std::size_t MORE = 64;

} // namespace

const unsigned SOCKET_DESCRIPTOR = PROX_FDTYPE_SOCKET;
const int TCP_SOCKET = SOCKINFO_TCP;
const int LISTENING = TSI_S_LISTEN;
const unsigned SPEAKS_V4 = INI_IPV4;

std::vector<int> processesOf(unsigned user) {
    std::vector<int> processes(elementsIn<int>(proc_listpids(PROC_UID_ONLY, user, nullptr, 0)) + MORE);
    const int room = static_cast<int>(processes.size() * sizeof(int));
    processes.resize(elementsIn<int>(proc_listpids(PROC_UID_ONLY, user, processes.data(), room)));
    return processes;
}

std::vector<Descriptor> descriptorsOf(int process) {
    std::vector<proc_fdinfo> open(elementsIn<proc_fdinfo>(proc_pidinfo(process, PROC_PIDLISTFDS, 0, nullptr, 0)) +
                                  MORE);
    const int room = static_cast<int>(open.size() * sizeof(proc_fdinfo));
    open.resize(elementsIn<proc_fdinfo>(proc_pidinfo(process, PROC_PIDLISTFDS, 0, open.data(), room)));
    std::vector<Descriptor> descriptors(open.size());
    std::transform(open.begin(), open.end(), descriptors.begin(), [](const proc_fdinfo &each) {
        return Descriptor{each.proc_fd, each.proc_fdtype};
    });
    return descriptors;
}

TcpSocket tcpSocket(int process, int descriptor) {
    socket_fdinfo info{}; // its kind stays 0 on failure
    proc_pidfdinfo(process, descriptor, PROC_PIDFDSOCKETINFO, &info, static_cast<int>(sizeof info));
    const tcp_sockinfo &tcp = info.psi.soi_proto.pri_tcp;
    return {info.psi.soi_kind, tcp.tcpsi_state, tcp.tcpsi_ini.insi_vflag,
            static_cast<unsigned>(tcp.tcpsi_ini.insi_lport), tcp.tcpsi_ini.insi_laddr.ina_46.i46a_addr4.s_addr};
}

} // namespace korvel::native
