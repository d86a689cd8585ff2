#include "desktop/panel_tray.h"
#include "simulator/desktop/accessible.h"
#include "simulator/desktop/screen.h"

#include <algorithm>

namespace korvel::test {
namespace {

using sim::AccessibleElement;

/// The tray's windows as a screen reader sees them, used with the keyboard alone.
struct AccessibilityTest : PanelTray {
    sim::AccessibleReader reader;

    sim::AccessibleWindow window() {
        for (const sim::AccessibleWindow &each : reader.windows(process->processId()))
            if (each.name == u"Korvel")
                return each;
        return {};
    }
    AccessibleElement focus() { return window().focus().value_or(AccessibleElement()); }
    /// Waits for a window that has the keyboard and shows this text.
    bool opens(const QString &text) {
        return soon([&] { return window().active && window().find(text); });
    }
    bool closes() {
        return soon([&] { return window().elements.isEmpty(); });
    }
    bool isEnabled(const QString &name) { return window().find(name).value_or(AccessibleElement()).enabled; }
    static QString stop(const AccessibleElement &each) { return each.name + u" ("_s + each.role + u')'; }
    /// Presses Tab and gives the stop that has the focus then; empty if it does not move.
    QString tab() {
        const QString before = stop(focus());
        sim::pressKey(u"Tab"_s);
        const auto moved = [&] { return !focus().name.isEmpty() && stop(focus()) != before; };
        return panel.waitUntil(moved, std::chrono::seconds(2)) ? stop(focus()) : QString();
    }
    /// Expects that all controls have different names, and that Tab visits them row by row, each from the left.
    void expectOrder() {
        QList<AccessibleElement> stops;
        for (const AccessibleElement &each : window().elements)
            if (each.focusable && each.enabled && (each.role != u"radio button" || each.checked))
                stops.append(each);
        std::ranges::sort(stops, [](const AccessibleElement &one, const AccessibleElement &other) {
            const bool sameRow = one.area.top() <= other.area.bottom() && other.area.top() <= one.area.bottom();
            return sameRow ? one.area.left() < other.area.left() : one.area.top() < other.area.top();
        });
        std::rotate(stops.begin(), std::ranges::find(stops, true, &AccessibleElement::focused), stops.end());
        QStringList seen, visited{stop(focus())};
        for (const AccessibleElement &each : stops) {
            EXPECT_FALSE(each.name.trimmed().isEmpty()) << "a " << each.role.toStdString() << " without a name";
            EXPECT_FALSE(seen.contains(stop(each))) << stop(each).toStdString();
            seen.append(stop(each));
        }
        for (QString next = tab(); next != visited.first() && visited.size() <= seen.size(); next = tab())
            visited.append(next);
        EXPECT_EQ(visited, seen);
    }
};

TEST_F(AccessibilityTest, ADeviceIsAllowedByKeyboardAndTheOutcomeIsRead) {
    home.changeScenario(agentFault(u"/e2ee/pair"_s, {{u"delayMs"_s, 300}})); // to read
    installAndSignIn();
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(lineIs(CONNECTED));
    const sim::JoinRequest device = home.encryption().requestJoin(u"Anna's phone"_s, u"ios"_s);
    const QString title = u"New device: Anna's phone · iPhone"_s;
    ASSERT_TRUE(opens(title));
    pass(std::chrono::seconds(1)); // until it takes keys
    EXPECT_EQ(window().description, title);
    EXPECT_EQ(focus().role, u"text");
    EXPECT_FALSE(isEnabled(u"Allow"_s));
    ASSERT_TRUE(reader.listen());
    sim::typeText(device.code);
    ASSERT_TRUE(soon([&] { return isEnabled(u"Allow"_s); }));
    expectOrder();
    sim::pressKey(u"Return"_s);
    EXPECT_TRUE(closes());
    const QStringList notices{u"Verifying…"_s, u"✓ Allowed Anna's phone"_s};
    EXPECT_TRUE(soon([&] { return reader.notifications() == notices; }));
}

TEST_F(AccessibilityTest, TheSignInWindowNamesItsControlsAndKeepsThePassword) {
    ASSERT_TRUE(home.installJobFile());
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(panel.click(u"Sign In / Sign Up…"_s));
    ASSERT_TRUE(opens(u"Sign In to Korvel"_s));
    EXPECT_TRUE(window().find(u"radio button"_s, u"Password"_s).value_or(AccessibleElement()).checked);
    EXPECT_FALSE(window().find(u"radio button"_s, u"Code"_s).value_or(AccessibleElement()).checked);
    EXPECT_EQ(stop(focus()), u"Account (text)");
    expectOrder();

    ASSERT_TRUE(reader.listen());
    sim::typeText(u"sam@example.com"_s);
    ASSERT_TRUE(soon([&] { return reader.typed().endsWith(u".com"); }));
    tab();
    ASSERT_EQ(stop(focus()), u"Password (password text)");
    sim::typeText(u"not the one"_s);
    EXPECT_TRUE(soon([&] { return reader.typed().endsWith(u".com"_s + QString(11, QChar(0x2022))); }));
    sim::pressKey(u"Return"_s);
    ASSERT_TRUE(opens(u"Incorrect account or password."_s));
    for (const AccessibleElement &each : window().elements)
        EXPECT_FALSE((each.name + each.text).contains(u"not"_s)) << each.role.toStdString();
    sim::pressKey(u"Escape"_s);
    EXPECT_TRUE(closes());
}

} // namespace
} // namespace korvel::test
