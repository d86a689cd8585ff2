#include "desktop/panel_tray.h"
#include "simulator/desktop/accessible.h"
#include "simulator/desktop/screen.h"

#include <QElapsedTimer>
#include <algorithm>

namespace korvel::test {
namespace {

/// The tray's windows as a screen reader is told of them, used with the keyboard of this desktop alone.
struct AccessibilityTest : PanelTray {
    sim::AccessibleReader reader;

    void startIn(const QString &encryption) {
        ASSERT_TRUE(home.setScenario({{u"e2ee"_s, QJsonObject{{u"start"_s, encryption}}}}));
        installAndSignIn();
        start();
    }
    sim::AccessibleWindow window() {
        for (const sim::AccessibleWindow &each : reader.windows(process->processId()))
            if (each.name == u"Korvel")
                return each;
        return {};
    }
    /// What has the focus; without a name when nothing has.
    sim::AccessibleElement focus() { return window().focus().value_or(sim::AccessibleElement()); }
    /// Waits for a window that has the keyboard and shows this text.
    bool opens(const QString &text) {
        return panel.waitUntil([&] { return window().active && window().find(text); }, SOON);
    }
    /// The same of a window that comes up by itself, and so takes no key before there was time to read it.
    bool comesUp(const QString &text) {
        QElapsedTimer reading;
        const bool came = opens(text);
        reading.start();
        return came && panel.waitUntil([&] { return reading.hasExpired(1000); }, SOON);
    }
    bool closes() {
        return panel.waitUntil([&] { return window().elements.isEmpty(); }, SOON);
    }
    bool isEnabled(const QString &name) { return window().find(name).value_or(sim::AccessibleElement()).enabled; }
    bool isFocused(const QString &name) {
        const auto focused = [&] { return focus().name == name; };
        return panel.waitUntil(focused, SOON);
    }
    static QString stop(const sim::AccessibleElement &each) { return each.name + u" ("_s + each.role + u')'; }
    /// Presses Tab and gives the stop that has the focus then; empty when it does not move.
    QString tab() {
        const QString before = stop(focus());
        sim::pressKey(u"Tab"_s);
        const auto moved = [&] { return !focus().name.isEmpty() && stop(focus()) != before; };
        return panel.waitUntil(moved, LOOK) ? stop(focus()) : QString();
    }
    /// Presses Tab until a control has the focus.
    bool tabTo(const QString &name) {
        for (int stops = 0; stops < MAX_STOPS && focus().name != name; ++stops)
            tab();
        return focus().name == name;
    }
    /// The stops that Tab leads to from where the focus is, until it comes round.
    QStringList tabOrder() {
        QStringList order{stop(focus())};
        for (QString next = tab(); next != order.first() && order.size() < MAX_STOPS; next = tab())
            order.append(next);
        return order;
    }
    /// What can be used with the keyboard, row by row from the left, from the one that has the focus on.
    QStringList visualOrder() {
        QList<sim::AccessibleElement> stops;
        for (const sim::AccessibleElement &each : window().elements)
            if (each.focusable && each.enabled && (each.role != u"radio button" || each.checked))
                stops.append(each);
        std::ranges::sort(stops, [](const sim::AccessibleElement &one, const sim::AccessibleElement &other) {
            const bool sameRow = one.area.top() <= other.area.bottom() && other.area.top() <= one.area.bottom();
            return sameRow ? one.area.left() < other.area.left() : one.area.top() < other.area.top();
        });
        const auto first = std::ranges::find(stops, true, &sim::AccessibleElement::focused);
        std::rotate(stops.begin(), first, stops.end());
        QStringList names;
        for (const sim::AccessibleElement &each : stops)
            names.append(stop(each));
        return names;
    }
    /// Everything that can be used says what it is.
    void expectNames() {
        int controls = 0;
        for (const sim::AccessibleElement &each : window().elements) {
            if (!each.focusable)
                continue;
            ++controls;
            EXPECT_FALSE(each.name.trimmed().isEmpty()) << "a " << each.role.toStdString() << " without a name";
        }
        EXPECT_GT(controls, 0);
    }
    void expectOrder() {
        const QStringList seen = visualOrder();
        EXPECT_EQ(tabOrder(), seen);
        EXPECT_EQ(QSet<QString>(seen.begin(), seen.end()).size(), seen.size()); // else the order tells nothing
    }
    int requestsTo(const QString &path) const {
        const auto all = home.requests();
        return int(std::ranges::count(all, path,
                                      [](const QJsonObject &request) { return request.value(u"path"_s).toString(); }));
    }
    bool sends(const QString &path) {
        return panel.waitUntil([&] { return requestsTo(path) > 0; }, SOON);
    }

    /// How long a key may take to move the focus.
    static constexpr auto LOOK = std::chrono::seconds(2);
    static constexpr int MAX_STOPS = 12;
};

TEST_F(AccessibilityTest, ADeviceIsAllowedByKeyboardAndEachNoticeReadOnce) {
    ASSERT_NO_FATAL_FAILURE(startIn(u"active"_s));
    home.changeScenario({{u"faults"_s, QJsonObject{{u"/e2ee/pair"_s, QJsonObject{{u"delayMs"_s, 1000}}}}}}); // to read
    const sim::AskedDevice device = home.encryption().askDevice(u"Anna's phone"_s, u"ios"_s);
    const QString title = u"New device: Anna's phone · iPhone"_s;
    ASSERT_TRUE(comesUp(title));
    EXPECT_EQ(window().description, title);
    expectNames();
    EXPECT_EQ(focus().role, u"text");
    EXPECT_FALSE(isEnabled(u"Allow"_s));
    expectOrder();

    ASSERT_TRUE(reader.listen());
    sim::typeText(device.code);
    ASSERT_TRUE(panel.waitUntil([&] { return isEnabled(u"Allow"_s); }, SOON));
    expectOrder();
    sim::pressKey(u"Return"_s);
    EXPECT_TRUE(sends(u"/e2ee/pair"_s));
    EXPECT_TRUE(closes());
    const QStringList notices{u"Verifying…"_s, u"✓ Allowed Anna's phone"_s};
    EXPECT_TRUE(panel.waitUntil([&] { return reader.notifications().size() >= notices.size(); }, SOON));
    EXPECT_EQ(reader.notifications(), notices);
}

TEST_F(AccessibilityTest, WhoTypesInAnotherProgramAnswersNothing) {
    ASSERT_NO_FATAL_FAILURE(startIn(u"active"_s));
    ASSERT_TRUE(panel.waitUntil([&] { return panel.statusLine().startsWith(u"● Connected"_s); }, SOON));
    int dismissed = 0;
    for (const QString &key : {u"space"_s, u"Return"_s, u"Escape"_s}) {
        sim::holdKey(key);
        home.encryption().raiseAlarm(u"Held "_s + key);
        EXPECT_TRUE(comesUp(u"Held "_s + key));
        sim::typeText(u"      "_s, std::chrono::milliseconds(300));
        sim::releaseKey(key);
        EXPECT_EQ(requestsTo(u"/e2ee/alarm/dismiss"_s), dismissed);
        ASSERT_TRUE(comesUp(u"Held "_s + key)); // is still there, and now it is read
        sim::pressKey(u"Return"_s);
        EXPECT_TRUE(closes());
        ++dismissed;
    }
}

TEST_F(AccessibilityTest, TheSignInWindowSaysWhatItsControlsAreAndKeepsThePasswordToItself) {
    ASSERT_TRUE(home.installJobFile());
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(panel.click(u"Sign In / Sign Up…"_s));
    ASSERT_TRUE(opens(u"Sign In to Korvel"_s));
    expectNames();
    EXPECT_TRUE(window().find(u"radio button"_s, u"Password"_s).value_or(sim::AccessibleElement()).checked);
    EXPECT_FALSE(window().find(u"radio button"_s, u"Code"_s).value_or(sim::AccessibleElement()).checked);
    EXPECT_EQ(stop(focus()), u"Account (text)");
    expectOrder();

    ASSERT_TRUE(reader.listen());
    sim::typeText(u"sam@example.com"_s);
    ASSERT_TRUE(panel.waitUntil([&] { return reader.heard().endsWith(u".com"); }, SOON));
    const qsizetype before = reader.heard().size();
    tab();
    ASSERT_EQ(stop(focus()), u"Password (password text)");
    sim::typeText(u"not the one"_s);
    ASSERT_TRUE(panel.waitUntil([&] { return reader.heard().size() >= before + 11; }, SOON));
    EXPECT_EQ(reader.heard().mid(before), QString(11, QChar(0x2022)));
    sim::pressKey(u"Return"_s);
    ASSERT_TRUE(opens(u"Incorrect account or password."_s)); // so it arrived, and the field still holds it
    EXPECT_TRUE(isFocused(u"Password"_s));
    for (const sim::AccessibleElement &each : window().elements)
        EXPECT_FALSE((each.name + each.text).contains(u"not"_s)) << each.role.toStdString();

    ASSERT_TRUE(tabTo(u"Sign up"_s));
    sim::pressKey(u"space"_s);
    ASSERT_TRUE(opens(u"Sign Up for Korvel"_s));
    expectNames();
    expectOrder();
    sim::pressKey(u"Escape"_s);
    EXPECT_TRUE(closes());
}

} // namespace
} // namespace korvel::test
