#include "home_fixture.h"
#include "tls_client.h"

#include "app/deployment.h"
#include "publisher/release.h"

#include <QElapsedTimer>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

// The public half of the key that the simulator signs with: RFC 8032, section 7.1, test 1.
const QString DEVELOPMENT_KEY = u"11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo="_s;

class UpdatesTest : public HomeTest {
protected:
    UpdatesTest() { EXPECT_TRUE(home.startAccountServer()); }

    SecureExchange get(const QString &path) {
        return askSecurely(home.accountServer(), home.authorityFile(), "GET " + path.toUtf8());
    }
    Verdict verdict(const QString &edition = builtDeployment().edition) {
        return judge(trayWith(edition, DEVELOPMENT_KEY, builtDeployment().version), get(u"/v1/dl/manifest"_s).body);
    }
    // Why a tray would not offer, or not install, what the server has.
    QString refusal(const QJsonObject &update) {
        home.setScenario({{u"update"_s, update}});
        const Verdict met = verdict();
        if (!met.refusal.isEmpty())
            return met.refusal;
        QFile file(folder.filePath(met.package->file));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(get(u"/dl/"_s + met.package->file).body);
        file.close();
        return fileRefusal(*met.package, file.fileName());
    }
    QString trouble(QLatin1StringView key, const QJsonValue &value) {
        return refusal({{u"ver"_s, u"99.1"_s}, {key, value}});
    }
};

} // namespace

TEST_F(UpdatesTest, OffersNothingNewAtFirstAndThenWhatWasPublished) {
    EXPECT_TRUE(verdict().refusal.contains(u"not newer"));
    EXPECT_EQ(get(home.updates().packagePath()).status(), 200);
    const QString control = standInRoot() + "/usr/local/bin/korvel-simulator"_L1;
    EXPECT_EQ(run(control, {u"update"_s, u"publish"_s, u"99.1"_s}).status, 0);
    EXPECT_EQ(verdict().refusal, QString());
    EXPECT_EQ(verdict().package->ver, u"99.1"_s);
    EXPECT_TRUE(get(home.updates().packagePath()).body.startsWith("korvel-package 99.1\n"));
    EXPECT_EQ(run(control, {u"update"_s}).output.trimmed(), get(u"/v1/dl/manifest"_s).body.trimmed());
    EXPECT_TRUE(home.updates().withdraw());
    EXPECT_TRUE(verdict().refusal.contains(u"not newer"));
}

TEST_F(UpdatesTest, ThePackageIsThatOfItsEditionWholeAndTheSameEachTime) {
    for (const QString &edition : {u"cn"_s, u"intl"_s}) {
        home.setScenario({{u"update"_s, QJsonObject{{u"ver"_s, u"99.1"_s}, {u"edition"_s, edition}}}});
        EXPECT_EQ(verdict(edition).refusal, QString());
        EXPECT_NE(verdict(edition == "cn"_L1 ? u"intl"_s : u"cn"_s).refusal, QString());
    }
    EXPECT_EQ(refusal({{u"ver"_s, u"99.1"_s}, {u"bytes"_s, 3'000'000}}), QString());
    const QByteArray package = get(home.updates().packagePath()).body;
    EXPECT_EQ(package.size(), 3'000'000);
    EXPECT_EQ(package, get(u"/dl/mirror/"_s + home.updates().offer().info.file).body) << "for a redirect to lead to";
    EXPECT_EQ(get(u"/dl/other.pkg"_s).status(), 404);
}

TEST_F(UpdatesTest, EachTroubleIsTheOneThatItIsNamedAfter) {
    EXPECT_TRUE(trouble("signature"_L1, u"bad"_s).contains(u"signature"));
    EXPECT_TRUE(trouble("signature"_L1, u"wrong-order"_s).contains(u"signature"));
    EXPECT_TRUE(trouble("sha256"_L1, u"bad"_s).contains(u"hash is not"));
    EXPECT_TRUE(trouble("sha256"_L1, u"upper-case"_s).contains(u"lower-case"));
    EXPECT_TRUE(trouble("size"_L1, 7).contains(u"bytes"));
    EXPECT_TRUE(trouble("manifest"_L1, u"no manifest"_s).contains(u"no package"));
    EXPECT_TRUE(trouble("manifest"_L1, QJsonObject{{u"packages"_s, QJsonValue::Null}}).contains(u"no package"));
    const QString unsafe = builtDeployment().edition == "cn"_L1 ? u".x-cn.pkg"_s : u".x.pkg"_s;
    EXPECT_TRUE(trouble("file"_L1, unsafe).contains(u"no safe name"));
}

TEST_F(UpdatesTest, ADownloadComesAtTheRateThatTheFaultSays) {
    home.updates().publish(u"99.1"_s);
    const QJsonObject slow{{u"mode"_s, u"slow"_s}, {u"bytesPerSecond"_s, 1'000'000}};
    home.changeScenario({{u"server"_s, QJsonObject{{u"faults"_s, QJsonObject{{home.updates().packagePath(), slow}}}}}});
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(get(home.updates().packagePath()).body, home.updates().offer().package);
    EXPECT_GE(time.elapsed(), 200) << "200,000 bytes";
}

} // namespace korvel::sim
