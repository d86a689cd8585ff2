#include "platform/linux/port_owner_linux.h"

#include <QByteArray>
#include <gtest/gtest.h>
#include <optional>
#include <tuple>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// A row of the kernel's table on a little-endian processor. Port 8790 is 2256 in hexadecimal.
QByteArray row(const char *local, int user, const char *state = "0A") {
    return QByteArray("   7: ") + local + " 00000000:0000 " + state + " 00000000:00000000 00:00000000 00000000 " +
           QByteArray::number(user).rightJustified(5) + "        0 138931 1 000000004e6ce4f8 100 0 0 10 0\n";
}

TEST(PortOwner, IsTheUserWhoseSocketListensOnThePortOfTheLoopback) {
    using Table = std::optional<QByteArray>; // nothing if the kernel's file could not be read
    const QByteArray stranger = row("0100007F:2256", 502);
    const QByteArray others = row("0100007F:2256", 501, "01") + // a connection
                              row("0200007F:2256", 501) +       // another address
                              row("0100007F:2257", 501) +       // another port
                              row("0100007F:2256 extra", 501) + "   8: 0100007F:2256\n   9: 0100007F:2256";
    const std::tuple<Table, Table, PortOwner> cases[] = {
        {row("0100007F:2256", 501), ""_ba, PortOwner::Trusted},
        {row("0100007F:2256", 0), ""_ba, PortOwner::Trusted},
        {stranger, ""_ba, PortOwner::Stranger},
        {""_ba, row("00000000000000000000000000000000:2256", 502), PortOwner::Stranger},
        {""_ba, row("0000000000000000FFFF00000100007F:2256", 502), PortOwner::Stranger},
        {""_ba, row("0000000000000000FFFF000000000000:2256", 502), PortOwner::Stranger},
        // The most specific address takes the connection.
        {row("00000000:2256", 502) + row("0100007F:2256", 501), row("00000000000000000000000000000000:2256", 502),
         PortOwner::Trusted},
        {others, row("00000000000000000000000001000000:2256", 501), PortOwner::Nobody},
        {Table(), {}, PortOwner::Unknown},
        {""_ba, {}, PortOwner::Unknown},
        {stranger, {}, PortOwner::Stranger},
    };
    for (const auto &[ipv4, ipv6, owner] : cases)
        EXPECT_EQ(portOwner({.ipv4 = ipv4, .ipv6 = ipv6}, 8790, 501), owner)
            << ipv4.value_or("-").constData() << ipv6.value_or("-").constData();
}

} // namespace
} // namespace korvel::test
