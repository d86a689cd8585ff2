#include "simulator/desktop/screen.h"
#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int CHECK_TAKES_MS = 1500;

QString allow() { return L(u"允许", u"Allow"); }

QString titleFor(const QString &name, const QString &platform) {
    return L(u"新设备请求加入：%1 · %2", u"New device: %1 · %2").arg(name, platform);
}

QString instructions() {
    return L(
        u"请输入新设备上显示的配对码。\n如果你刚才没有在新设备上登录，请勿输入，并立即修改密码。",
        u"Enter the pairing code shown on the new device.\nIf you didn't just sign in on a new device, don't enter "
        u"it, and change your password immediately.");
}

bool canAllow(Tour &tour) {
    const auto window = tour.window();
    const auto button = window ? window->find(allow()) : std::nullopt;
    return button && button->enabled;
}

/// Expects the alert, with an empty focused field and a disabled button Allow.
void expectAlert(Tour &tour, const QStringList &texts, const QString &name) {
    expectWindow(tour, texts + QStringList{allow(), instructions()}, name);
    readWindow(tour);
    const AccessibleElement focus = focusOf(tour);
    expect(focus.role == role::FIELD && focus.text.isEmpty(), u"an empty field should have the focus"_s);
    expect(!canAllow(tour), u"a device can be allowed without a code"_s);
}

/// Types a code and waits until the button Allow is enabled.
void typeCode(Tour &tour, const QString &code) {
    typeText(code);
    const QString shown = code.left(3) + u' ' + code.mid(3);
    expect(tour.waitUntil([&] { return focusOf(tour).text == shown && canAllow(tour); }, NEXT_POLL),
           u"the code cannot be sent"_s);
}

void send(Tour &tour, int requestsBefore) {
    pressKey(u"Return"_s);
    const auto sent = [&] { return requestsTo(tour, u"/e2ee/pair"_s) > requestsBefore; };
    expect(tour.waitUntil(sent, NEXT_POLL), u"Return does not send it"_s);
}

void allowDevice(Tour &tour) {
    const QString device = L(u"安娜的手机", u"Anna's phone");
    const QJsonObject late{{u"/e2ee/pair"_s, QJsonObject{{u"delayMs"_s, CHECK_TAKES_MS}, {u"times"_s, 1}}}};
    change(tour, {{u"e2ee"_s, QJsonObject{{u"replies"_s, late}}}});
    const JoinRequest request = tour.home().encryption().requestJoin(device, u"ios"_s);
    const int before = requestsTo(tour, u"/e2ee/pair"_s);
    expectAlert(tour, {titleFor(device, u"iPhone"_s)}, u"device-asks"_s);
    typeCode(tour, request.code);
    screenshot(tour, u"device-code-typed"_s);
    send(tour, before);
    expectNotice(tour, L(u"正在验证…", u"Verifying…"));
    expectNotice(tour, L(u"✓ 已允许「%1」", u"✓ Allowed %1").arg(device));
    screenshot(tour, u"device-allowed"_s);
    expectRequests(tour, u"/e2ee/pair"_s, before + 1);
}

/// Tab moves from the field over the enabled buttons, in the system's order, to Deny.
void denyDevice(Tour &tour, const QString &device) {
    const QString deny = L(u"拒绝", u"Deny"), later = L(u"稍后", u"Later");
    for (int stops = 0; stops < 2 && focusOf(tour).name != deny; ++stops) {
        const QString before = focusOf(tour).name;
        pressKey(u"Tab"_s);
        const auto moved = [&] {
            const QString now = focusOf(tour).name;
            return now != before && (now == deny || now == later);
        };
        tour.waitUntil(moved, NEXT_POLL);
    }
    expect(focusOf(tour).name == deny, u"Tab does not lead to "_s + deny);
    pressKey(u"space"_s);
    expectNotice(tour, L(u"已拒绝「%1」。如果不是你本人在登录，请立即修改密码",
                         u"Denied %1. If that wasn't you, change your password immediately.")
                           .arg(device));
    screenshot(tour, u"device-denied"_s);
    expectRequests(tour, u"/e2ee/reject"_s, 1);
}

void denySecond(Tour &tour) {
    const QString device = L(u"客厅平板", u"Living-room tablet");
    const QString title = titleFor(device, L(u"安卓手机", u"Android"));
    const JoinRequest request = tour.home().encryption().requestJoin(device, u"android"_s);
    const int before = requestsTo(tour, u"/e2ee/pair"_s);
    expectAlert(tour, {title}, u"second-device-asks"_s);
    typeCode(tour, otherCode(request.code));
    send(tour, before);
    expectAlert(tour, {title, L(u"配对码与新设备上显示的不一致", u"That isn't the code shown on the new device.")},
                u"second-device-wrong-code"_s);
    denyDevice(tour, device);
    expectEntry(tour, title + u"…"_s, false);
}

} // namespace

QList<Step> deviceSteps() {
    return {{u"a device requests to join, its code is typed, Return allows it"_s, allowDevice},
            {u"another one is denied after a wrong code"_s, denySecond}};
}

} // namespace korvel::sim
