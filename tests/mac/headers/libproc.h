// What native_sockets_mac.mm uses of macOS's libproc.h and sys/proc_info.h, for the syntax check on Linux only.
#pragma once

#include <netinet/in.h>
#include <stdint.h>

#define PROC_UID_ONLY 4
#define PROC_PIDLISTFDS 1
#define PROC_PIDFDSOCKETINFO 3
#define PROX_FDTYPE_SOCKET 2
enum { SOCKINFO_TCP = 2 };
#define TSI_S_LISTEN 1
#define INI_IPV4 0x1

struct proc_fdinfo {
    int32_t proc_fd;
    uint32_t proc_fdtype;
};
struct in4in6_addr {
    u_int32_t i46a_pad32[3];
    struct in_addr i46a_addr4;
};
struct in_sockinfo {
    int insi_fport;
    int insi_lport;
    uint8_t insi_vflag;
    union {
        struct in4in6_addr ina_46;
        struct in6_addr ina_6;
    } insi_laddr;
};
struct tcp_sockinfo {
    struct in_sockinfo tcpsi_ini;
    int tcpsi_state;
};
struct socket_info {
    int soi_kind;
    union {
        struct tcp_sockinfo pri_tcp;
    } soi_proto;
};
struct socket_fdinfo {
    struct socket_info psi;
};

extern "C" {
int proc_listpids(uint32_t type, uint32_t typeinfo, void *buffer, int buffersize);
int proc_pidinfo(int pid, int flavor, uint64_t arg, void *buffer, int buffersize);
int proc_pidfdinfo(int pid, int fd, int flavor, void *buffer, int buffersize);
}
