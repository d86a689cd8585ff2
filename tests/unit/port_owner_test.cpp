#include "platform/linux/port_owner_linux.h"

#include <gtest/gtest.h>

namespace korvel::test {
namespace {

constexpr uid_t USER = 501;
constexpr quint16 PORT = 8790; // 2256 in hexadecimal

/// A row of a table, as the kernel writes it on a processor that puts the low byte first.
QByteArray row(const char *local, const char *state, int user) {
    return QByteArray("   7: ") + local + " 00000000:0000 " + state + " 00000000:00000000 00:00000000 00000000 " +
           QByteArray::number(user).rightJustified(5) + "        0 138931 1 000000004e6ce4f8 100 0 0 10 0\n";
}

PortOwner owner(std::optional<QByteArray> ipv4, std::optional<QByteArray> ipv6 = QByteArray()) {
    return portOwner({.ipv4 = std::move(ipv4), .ipv6 = std::move(ipv6)}, PORT, USER);
}

TEST(PortOwner, IsTheUserWhoseSocketListensThere) {
    EXPECT_EQ(owner(row("0100007F:2256", "0A", 501)), PortOwner::Trusted);
    EXPECT_EQ(owner(row("0100007F:2256", "0A", 0)), PortOwner::Trusted);
    EXPECT_EQ(owner(row("0100007F:2256", "0A", 502)), PortOwner::Stranger);
    EXPECT_EQ(owner(row("00000000:2256", "0A", 502)), PortOwner::Stranger);
    for (const char *local : {"00000000000000000000000000000000:2256", "0000000000000000FFFF00000100007F:2256",
                              "0000000000000000FFFF000000000000:2256"})
        EXPECT_EQ(owner(QByteArray(), row(local, "0A", 502)), PortOwner::Stranger) << local;
    // The address that takes the connection decides, wherever it stands.
    EXPECT_EQ(owner(row("00000000:2256", "0A", 502) + row("0100007F:2256", "0A", 501),
                    row("00000000000000000000000000000000:2256", "0A", 502)),
              PortOwner::Trusted);
}

TEST(PortOwner, IsNobodyWhereNoSocketListensOnThatPortOfTheLoopback) {
    const QByteArray others = row("0100007F:2256", "01", 501) + // a connection
                              row("0200007F:2256", "0A", 501) + // another address
                              row("0100007F:2257", "0A", 501) + // another port
                              row("0100007F:2256 extra", "0A", 501) + "   8: 0100007F:2256\n   9: 0100007F:2256";
    EXPECT_EQ(owner(others, row("00000000000000000000000001000000:2256", "0A", 501)), PortOwner::Nobody);
}

TEST(PortOwner, IsUnknownWhereATableThatWouldTellCannotBeRead) {
    EXPECT_EQ(owner(std::nullopt, std::nullopt), PortOwner::Unknown);
    EXPECT_EQ(owner(QByteArray(), std::nullopt), PortOwner::Unknown);
    EXPECT_EQ(owner(row("0100007F:2256", "0A", 502), std::nullopt), PortOwner::Stranger);
}

} // namespace
} // namespace korvel::test
