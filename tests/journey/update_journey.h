#pragma once

#include "journey/journey.h"
#include "simulator/home/files.h"
#include "support/signing.h"

namespace korvel::test {

/// A connected Mac of the mainland edition, version 1.2.3, whose account server offers what the test says.
struct UpdateJourney : Journey {
    void SetUp() override {
        fixed.UPDATE_PUBKEY = PUBLIC_KEY;
        ASSERT_TRUE(home.startAccountServer());
        installAndSignIn();
        configure(u"server"_s, home.accountServer());
        launch();
        ASSERT_TRUE(showsSoon(CONNECTED));
        // The start's own report comes by itself; after it, each notice is the response to a choice.
        ASSERT_TRUE(eventually([&] { return notices.last().startsWith(u"● Connected"_s); }));
    }
    /// Has the server offer a package of that version, with a merge patch over the scenario for what is to go wrong.
    void offer(const QString &version, const QJsonObject &patch = {}) {
        const QJsonObject good{{u"update"_s, QJsonObject{{u"ver"_s, version}, {u"edition"_s, u"cn"_s}}}};
        ASSERT_TRUE(home.setScenario(sim::mergePatch(good, patch)));
    }
    /// Looks for an update, as from the menu, and gives what is said.
    QString check() {
        notices.shown.clear();
        item.press(Action::CheckUpdate);
        eventually([&] { return !notices.shown.empty(); });
        return notices.last();
    }
    /// Chooses the update from the menu and gives what is said in the end.
    QString install() {
        notices.shown.clear();
        item.press(Action::InstallUpdate);
        EXPECT_TRUE(eventually([&] { return !isBusy(); }));
        return notices.last();
    }
    bool isBusy() const { return tray->currentState().update.updateBusy; }
    /// Whether the menu offers to update to that version, now.
    bool isOffered(const QString &version) const {
        const MenuEntry entry = item.entry(Action::InstallUpdate);
        return entry.title == u"⬆ Update to "_s + version + u'…' && entry.enabled;
    }
    /// The hashes of what was installed so far.
    QStringList installed() const {
        QStringList hashes;
        for (const QJsonObject &package : home.installedPackages())
            hashes.append(package.value(u"sha256").toString());
        return hashes;
    }
};

} // namespace korvel::test
