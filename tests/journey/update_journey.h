#pragma once

#include "journey/journey.h"
#include "simulator/home/files.h"
#include "support/signing.h"

namespace korvel::test {

/// A connected Mac of the mainland edition, version 1.2.3, whose account server offers an update.
struct UpdateJourney : Journey {
    void SetUp() override {
        fixed.UPDATE_PUBKEY = PUBLIC_KEY;
        ASSERT_TRUE(home.startAccountServer());
        installAndSignIn();
        configure(u"server"_s, home.accountServer());
        launch();
        // After the report of the start, each notice is the response to a choice.
        ASSERT_TRUE(eventually([&] { return notices.last().startsWith(u"● Connected"_s); }));
    }
    /// Has the server offer a package of that version, with a merge patch over the scenario.
    void offer(const QString &version, const QJsonObject &patch = {}) {
        const QJsonObject good{{u"update"_s, QJsonObject{{u"ver"_s, version}, {u"edition"_s, u"cn"_s}}}};
        ASSERT_TRUE(home.setScenario(sim::mergePatch(good, patch)));
    }
    bool isBusy() const { return tray->currentState().update.updateBusy; }
    /// Performs an action of the update and gives the notice at its end.
    QString perform(Action action) {
        notices.shown.clear();
        item.press(action);
        eventually([&] { return !notices.shown.empty() && !isBusy(); });
        return notices.last();
    }
    QString check() { return perform(Action::CheckUpdate); }
    QString install() { return perform(Action::InstallUpdate); }
    /// Whether the menu offers this version now.
    bool isOffered(const QString &version) const {
        const MenuEntry entry = item.entry(Action::InstallUpdate);
        return entry.title == u"⬆ Update to "_s + version + u'…' && entry.enabled;
    }
};

} // namespace korvel::test
