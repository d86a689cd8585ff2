#include "base/log.h"
#include "exchange/sha256.h"
#include "journey/update_journey.h"
#include "support/full_disk.h"

namespace korvel::test {
namespace {

const QString FILE_NAME = u"Korvel-2.0-cn.pkg"_s;
const QString AVAILABLE = u"⬆ Korvel 2.0 is available. Choose Update to 2.0 in the menu."_s;
const QString UP_TO_DATE = u"✓ Korvel is up to date (1.2.3)."_s;
const QString NOT_CHECKED = u"Couldn't check for updates. Try again later."_s;
const QString OFFLINE = u"This Mac is offline. Connect to the internet and try again."_s;
const QString NO_CONNECTION = u"Can't connect to the server. Try again later."_s;
const QString MODIFIED = u"The installer was incomplete or modified and has been deleted. Try again later."_s;
const QString OPENED = u"The installer is open. Follow the steps to finish."_s;
const QString UNSAFE = u"Version 2.0 didn't pass the security check. Download it from the website."_s;
const QString UPDATED = u"✓ Updated to 2.0"_s;

QJsonObject update(const QString &key, const QJsonValue &value) { return {{u"update"_s, QJsonObject{{key, value}}}}; }

QJsonObject fault(const QString &path, const QJsonObject &fault) {
    return {{u"server"_s, QJsonObject{{u"faults"_s, QJsonObject{{path, fault}}}}}};
}
QJsonObject manifestFault(const QJsonObject &f) { return fault(u"/v1/dl/manifest"_s, f); }
QJsonObject packageFault(const QJsonObject &f) { return fault(u"/dl/"_s + FILE_NAME, f); }
QJsonObject mode(const QString &name) { return {{u"mode"_s, name}}; }
QJsonObject answer(int status, const QString &body = {}) {
    return {{u"mode"_s, u"answer"_s}, {u"status"_s, status}, {u"type"_s, u"text/plain"_s}, {u"body"_s, body}};
}
QJsonObject redirect(const QString &to) { return {{u"mode"_s, u"redirect"_s}, {u"location"_s, to}}; }

QJsonObject played(const QJsonObject &install) { return {{u"install"_s, install}}; }
const QJsonObject FAILS{{u"status"_s, 3}, {u"stderr"_s, u"it failed\n"_s}};

struct UpdateJourneyTest : UpdateJourney {
    const QString package = paths.updateDir + u'/' + FILE_NAME;
    const QString elsewhere = u"http://127.0.0.1:%1/dl/"_s.arg(home.port()) + FILE_NAME;

    /// The packages in the tray's cache.
    QStringList cached() const { return QDir(paths.updateDir).entryList(QDir::Files | QDir::Hidden | QDir::System); }
    int downloads() const {
        int count = 0;
        for (const QJsonObject &request : home.serverRequests())
            count += request.value(u"path").toString().startsWith(u"/dl/");
        return count;
    }
    /// The good one is the only one that the installer is given.
    void expectTheGoodOneInstalled() {
        EXPECT_EQ(check(), AVAILABLE);
        EXPECT_EQ(install(), UPDATED);
        EXPECT_EQ(installed(), QStringList{home.updates().offer().info.sha});
        EXPECT_FALSE(tray->currentState().update.updateAvail);
        EXPECT_EQ(cached(), QStringList());
    }
};

TEST_F(UpdateJourneyTest, AManifestWithOneThingWrongIsNeverOffered) {
    const QString self = u"https://"_s + home.accountServer() + u"/v1/dl/manifest"_s;
    const struct {
        const char *what;
        QJsonObject patch;
        QString notice;
    } cases[] = {
        {"a bad signature", update(u"signature"_s, u"bad"_s), UNSAFE},
        {"the same", update(u"ver"_s, u"1.2.3.0"_s), UP_TO_DATE},
        {"refused", manifestFault(answer(404)), NOT_CHECKED},
        {"cut off", manifestFault(mode(u"truncate"_s)), OFFLINE},
        {"elsewhere without TLS", manifestFault(redirect(elsewhere)), NO_CONNECTION},
        {"round and round", manifestFault(redirect(self)), NO_CONNECTION},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        offer(u"2.0"_s, c.patch);
        EXPECT_EQ(check(), c.notice);
        EXPECT_EQ(notices.shown.back().error, c.notice != UP_TO_DATE);
        EXPECT_FALSE(tray->currentState().update.updateAvail);
        install(); // even if somebody chose it
    }
    EXPECT_EQ(downloads(), 0);
    EXPECT_TRUE(installed().isEmpty());

    QJsonObject moved = redirect(self);
    moved[u"times"_s] = 1;
    offer(u"2.0"_s, manifestFault(moved)); // over TLS it is followed
    expectTheGoodOneInstalled();
    offer(u"1.9"_s); // newer than this program, older than what has just been installed
    EXPECT_EQ(check(), UP_TO_DATE);
    EXPECT_EQ(installed().size(), 1);
}

TEST_F(UpdateJourneyTest, ADownloadOrInstallationThatGoesWrongInstallsNothingAndCanBeTriedAgain) {
    enum class Stays { Nothing, Package }; // in the cache
    const struct {
        const char *what;
        QJsonObject patch;
        QString notice;
        Stays stays = Stays::Nothing;
    } cases[] = {
        {"refused", packageFault(answer(404, u"No such version."_s)), u"No such version."_s},
        {"cut off", packageFault(mode(u"truncate"_s)), OFFLINE},
        {"elsewhere without TLS", packageFault(redirect(elsewhere)), NO_CONNECTION},
        {"another body", update(u"sha256"_s, u"bad"_s), MODIFIED},
        {"too long", update(u"size"_s, 199'999), MODIFIED},
        {"canceled", played({{u"cancel"_s, true}}), u"Canceled. To install, choose Update to 2.0 in the menu."_s,
         Stays::Package},
        {"swapped", played({{u"swapBefore"_s, u"copy"_s}}),
         u"The installer was modified before installation, so installation stopped."_s},
        {"no copy", played({{u"cp"_s, FAILS}}), OPENED, Stays::Package},
        {"not installed", played({{u"installer"_s, FAILS}}), OPENED, Stays::Package},
        {"not installed, and swapped", played({{u"installer"_s, FAILS}, {u"swapBefore"_s, u"check"_s}}), MODIFIED},
    };
    QString sha;
    const auto expectRefused = [&](const QString &notice, Stays stays = Stays::Nothing) {
        desktop.opened.clear();
        EXPECT_EQ(install(), notice);
        EXPECT_TRUE(eventually([&] { return isOffered(u"2.0"_s); }));
        EXPECT_EQ(cached(), stays == Stays::Nothing ? QStringList() : QStringList{FILE_NAME});
        EXPECT_EQ(stays == Stays::Package, sha256File(package) == sha);
        const QString opened = u"file://"_s + package;
        EXPECT_EQ(desktop.opened, notice == OPENED ? QStringList{opened} : QStringList());
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        QDir(paths.updateDir).removeRecursively();
        offer(u"2.0"_s, c.patch);
        sha = home.updates().offer().info.sha;
        EXPECT_EQ(check(), AVAILABLE);
        expectRefused(c.notice, c.stays);
    }
    offer(u"2.0"_s);
    EXPECT_EQ(check(), AVAILABLE);
    {
        const FullDisk full(100'000);
        QString logged;
        setLogSink([&](const QString &line) { logged = line; });
        expectRefused(u"Couldn't save the installer. Check your disk space."_s);
        setLogSink({});
        EXPECT_EQ(logged, u"[update] 存不下安装包:"_s + qt_error_string(EFBIG));
    }
    ASSERT_TRUE(home.stopAccountServer());
    expectRefused(NO_CONNECTION);
    ASSERT_TRUE(home.startAccountServer());
    const QString temporary = home.path() + u"/.simulator/private/tmp"_s;
    QDir(temporary).removeRecursively();
    QFile inItsPlace(temporary);
    ASSERT_TRUE(inItsPlace.open(QIODevice::WriteOnly));
    expectRefused(OPENED, Stays::Package);
    inItsPlace.remove();
    EXPECT_TRUE(installed().isEmpty());
    for (const QJsonObject &request : home.requests()) // nothing left over plain HTTP
        EXPECT_FALSE(request.value(u"path").toString().contains(u"/dl/"));

    QDir(paths.updateDir).removeRecursively();
    const QString mirror = u"https://"_s + home.accountServer() + u"/dl/mirror/"_s + FILE_NAME;
    offer(u"2.0"_s, packageFault(redirect(mirror))); // over TLS it is followed
    expectTheGoodOneInstalled();
}

} // namespace
} // namespace korvel::test
