#include "journey/update_journey.h"
#include "support/full_disk.h"

namespace korvel::test {
namespace {

const QString FILE_NAME = u"Korvel-2.0-cn.pkg"_s, PACKAGE_PATH = u"/dl/"_s + FILE_NAME,
              MANIFEST_PATH = u"/v1/dl/manifest"_s;
const QString AVAILABLE = u"⬆ Korvel 2.0 is available. Choose Update to 2.0 in the menu."_s;
const QString NO_CONNECTION = u"Can't connect to the server. Try again later."_s;
const QString MODIFIED = u"The installer was incomplete or modified and has been deleted. Try again later."_s;
const QString OPENED = u"The installer is open. Follow the steps to finish."_s;

QJsonObject update(const QString &key, const QJsonValue &value) { return {{u"update"_s, QJsonObject{{key, value}}}}; }
QJsonObject redirect(const QString &path, const QString &to, int times = 1000) {
    return serverFault(path, {{u"mode"_s, u"redirect"_s}, {u"location"_s, to}, {u"times"_s, times}});
}

struct UpdateJourneyTest : UpdateJourney {
    const QString secure = u"https://"_s + home.accountServer(),
                  insecure = u"http://127.0.0.1:%1"_s.arg(home.port()) + PACKAGE_PATH;

    void TearDown() override {
        for (const QJsonObject &request : home.requests())
            EXPECT_FALSE(request.value(u"path").toString().contains(u"/dl/")) << "over plain HTTP";
    }
    /// The packages in the tray's cache.
    QStringList cached() const { return QDir(paths.updateDir).entryList(QDir::Files | QDir::Hidden | QDir::System); }
    /// Expects that the offer is installed, and that it is the only one that ever was.
    void expectInstalled() {
        EXPECT_EQ(check(), AVAILABLE);
        EXPECT_EQ(install(), u"✓ Updated to 2.0"_s);
        ASSERT_EQ(home.installedPackages().size(), 1);
        EXPECT_EQ(home.installedPackages().first().value(u"sha256"), home.updates().offer().info.sha);
        EXPECT_FALSE(tray->currentState().update.updateAvail);
        EXPECT_EQ(cached(), QStringList());
    }
};

TEST_F(UpdateJourneyTest, AManifestWithOneThingWrongIsNeverOffered) {
    const QString unsafe = u"Version 2.0 didn't pass the security check. Download it from the website."_s;
    const std::pair<QJsonObject, QString> cases[] = {{update(u"signature"_s, u"bad"_s), unsafe},
                                                     {redirect(MANIFEST_PATH, insecure), NO_CONNECTION},
                                                     {redirect(MANIFEST_PATH, secure + MANIFEST_PATH), NO_CONNECTION}};
    for (const auto &[patch, notice] : cases) {
        offer(u"2.0"_s, patch);
        EXPECT_EQ(check(), notice);
        EXPECT_FALSE(tray->currentState().update.updateAvail);
    }
    offer(u"2.0"_s, redirect(MANIFEST_PATH, secure + MANIFEST_PATH, 1)); // followed over TLS
    expectInstalled();
}

TEST_F(UpdateJourneyTest, AFailedDownloadOrInstallationInstallsNothingAndCanBeRepeated) {
    const QJsonObject fails{{u"status"_s, 3}};
    const auto installation = [](const QJsonObject &install) { return QJsonObject{{u"install"_s, install}}; };
    const std::pair<QJsonObject, QString> cases[] = {
        {serverFault(PACKAGE_PATH, {{u"mode"_s, u"truncate"_s}}),
         u"This Mac is offline. Connect to the internet and try again."_s},
        {redirect(PACKAGE_PATH, insecure), NO_CONNECTION},
        {update(u"sha256"_s, u"bad"_s), MODIFIED},
        {update(u"size"_s, 199'999), MODIFIED},
        {installation({{u"swapBefore"_s, u"copy"_s}}),
         u"The installer was modified before installation, so installation stopped."_s},
        {installation({{u"installer"_s, fails}}), OPENED},
        {installation({{u"installer"_s, fails}, {u"swapBefore"_s, u"check"_s}}), MODIFIED},
    };
    const auto expectFailure = [&](const QString &notice) {
        EXPECT_EQ(install(), notice);
        EXPECT_TRUE(eventually([&] { return isOffered(u"2.0"_s); }));
        EXPECT_EQ(cached(), notice == OPENED ? QStringList{FILE_NAME} : QStringList());
        EXPECT_TRUE(home.installedPackages().isEmpty());
    };
    for (const auto &[patch, notice] : cases) {
        SCOPED_TRACE(QJsonDocument(patch).toJson().toStdString());
        QDir(paths.updateDir).removeRecursively();
        offer(u"2.0"_s, patch);
        EXPECT_EQ(check(), AVAILABLE);
        expectFailure(notice);
    }
    EXPECT_EQ(desktop.opened, QStringList{u"file://"_s + paths.updateDir + u'/' + FILE_NAME});
    {
        const FullDisk full(100'000);
        offer(u"2.0"_s);
        expectFailure(u"Couldn't save the installer. Check your disk space."_s);
    }
    offer(u"2.0"_s, redirect(PACKAGE_PATH, secure + u"/dl/mirror/"_s + FILE_NAME)); // followed over TLS
    expectInstalled();
}

} // namespace
} // namespace korvel::test
