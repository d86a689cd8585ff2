#include "account/server_rules.h"

#include "support/fakes.h"

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

TEST(ServerRules, ATypedTextBecomesHostAndPortOrNothing) {
    const struct {
        QString typed;
        std::optional<QString> address;
    } cases[] = {
        {u"  HTTPS://Relay.Example:8443/ \n"_s, u"Relay.Example:8443"_s},
        {u"relay.example"_s, u"relay.example:443"_s},
        {u"wss://host"_s, u"host:443"_s},
        {u"Http://host///"_s, u"host:443"_s},
        {u"relay.example:+0443"_s, u"relay.example:443"_s},
        {u"relay.example:65535"_s, u"relay.example:65535"_s},
        {QString(253, u'a'), QString(253, u'a') + u":443"_s},
        {QString(254, u'a'), std::nullopt},
        {u"relay.example:"_s, std::nullopt},
        {u"relay.example:0"_s, std::nullopt},
        {u"relay.example:-1"_s, std::nullopt},
        {u"relay.example:70000"_s, std::nullopt},
        {u"relay.example:99999999999999999999"_s, std::nullopt},
        {u"relay.example: 443"_s, std::nullopt},
        {u"relay.example:443:1"_s, std::nullopt},
        {u"[::1]:443"_s, std::nullopt},
        {u"relay.example/path"_s, std::nullopt},
        {u"user@relay.example"_s, std::nullopt},
        {u"re lay"_s, std::nullopt},
        {u"-relay"_s, std::nullopt},
        {u"ftp://host"_s, std::nullopt},
        {u"http://https://host"_s, std::nullopt},
        {u""_s, std::nullopt},
    };
    for (const auto &c : cases)
        EXPECT_EQ(normalizeServer(c.typed), c.address) << c.typed.toStdString();
}

TEST(ServerRules, AServerOfAnotherEditionIsForeignAndIgnored) {
    const TestHome home;
    EXPECT_TRUE(isForeignServer(home.fixed, u"INTL.example:443"_s));
    EXPECT_FALSE(isForeignServer(home.fixed, u"cn.example:443"_s));
    EXPECT_FALSE(isForeignServer(home.fixed, u"own.example:443"_s));

    const auto serverWith = [&](const QJsonValue &stored) { return serverOf(home.fixed, {{u"server"_s, stored}}); };
    EXPECT_EQ(serverWith(u"Own.example"_s), u"Own.example:443"_s);
    EXPECT_EQ(serverWith(u"intl.example"_s), home.fixed.DEFAULT_SERVER);
    EXPECT_EQ(serverWith(u"not a server"_s), home.fixed.DEFAULT_SERVER);
    EXPECT_EQ(serverWith(443), home.fixed.DEFAULT_SERVER);
}

TEST(ServerRules, AMacIsBoundByANonEmptyTokenText) {
    EXPECT_TRUE(bound({{u"agentToken"_s, u"t"_s}}));
    EXPECT_FALSE(bound({{u"agentToken"_s, u""_s}}));
    EXPECT_FALSE(bound({{u"agentToken"_s, 7}}));
    EXPECT_FALSE(bound({}));
}

} // namespace
} // namespace korvel::test
