#include "journey/update_journey.h"

#include "simulator/home/files.h"
#include "support/signing.h"

namespace korvel::test {

void UpdateJourney::SetUp() {
    fixed.UPDATE_PUBKEY = PUBLIC_KEY;
    ASSERT_TRUE(home.startAccountServer());
    installAndSignIn();
    configure(u"server"_s, home.accountServer());
    launch();
    ASSERT_TRUE(showsSoon(u"● Connected · ann · 0 sessions"_s));
    // The start's own report comes by itself; after it, each notice is the answer to a choice.
    ASSERT_TRUE(eventually([&] { return notices.last().startsWith(u"● Connected"_s); }));
}

void UpdateJourney::offer(const QString &version, const QJsonObject &patch) {
    const QJsonObject good{{u"update"_s, QJsonObject{{u"ver"_s, version}, {u"edition"_s, u"cn"_s}}}};
    ASSERT_TRUE(home.setScenario(sim::mergePatch(good, patch)));
}

QString UpdateJourney::check() {
    notices.shown.clear();
    item.press(Action::CheckUpdate);
    eventually([&] { return !notices.shown.empty(); });
    return notices.last();
}

QString UpdateJourney::install() {
    notices.shown.clear();
    item.press(Action::InstallUpdate);
    EXPECT_TRUE(eventually([&] { return !isBusy(); }));
    return notices.last();
}

bool UpdateJourney::isOffered(const QString &version) const {
    const MenuEntry entry = item.entry(Action::InstallUpdate);
    return entry.title == u"⬆ Update to "_s + version + u'…' && entry.enabled;
}

QStringList UpdateJourney::installed() const {
    QStringList hashes;
    for (const QJsonObject &package : home.installedPackages())
        hashes.append(package.value(u"sha256").toString());
    return hashes;
}

QStringList UpdateJourney::cached() const {
    return QDir(paths.updateDir).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

} // namespace korvel::test
