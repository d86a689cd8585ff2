#include "simulator/tour/steps.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/window_checks.h"

#include <QJsonObject>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int CHECK_TAKES_MS = 1500;

QString allow(const Tour &tour) { return tour.say(u"允许"_s, u"Allow"_s); }

QString titleFor(const Tour &tour, const QString &name, const QString &platform) {
    return tour.say(u"新设备请求加入："_s, u"New device: "_s) + name + u" · "_s + platform;
}

QString instructions(const Tour &tour) {
    return tour.say(u"请输入新设备上显示的配对码。\n如果你刚才没有在新设备上登录，请勿输入，并立即修改密码。"_s,
                    u"Enter the pairing code shown on the new device.\nIf you didn't just sign in on a new device, "
                    u"don't enter it, and change your password immediately."_s);
}

// The alert with its field in the focus, empty, and nothing to allow yet.
QString expectAlert(Tour &tour, const QStringList &texts, const QString &name) {
    if (QString wrong = expectWindow(tour, texts + QStringList{allow(tour)}, name); !wrong.isEmpty())
        return wrong;
    readWindow(tour);
    const auto window = tour.window();
    const auto focus = window ? window->focus() : std::nullopt;
    if (!focus || focus->role != "text"_L1 || !focus->text.isEmpty())
        return u"an empty field should have the focus"_s;
    return window->find(allow(tour))->enabled ? u"a device can be allowed without a code"_s : QString();
}

// Types a code as its user does and waits until it can be sent.
QString typeCode(Tour &tour, const QString &code) {
    typeText(code);
    const auto canBeSent = [&] {
        const auto window = tour.window();
        const auto field = window ? window->focus() : std::nullopt;
        return field && field->text == code.left(3) + u' ' + code.mid(3) && window->find(allow(tour))->enabled;
    };
    return tour.waitUntil(canBeSent, NEXT_POLL) ? QString() : u"the code cannot be sent"_s;
}

QString send(Tour &tour, int requestsBefore) {
    pressKey(u"Return"_s);
    const auto sent = [&] { return requestsTo(tour, u"/e2ee/pair"_s) > requestsBefore; };
    return tour.waitUntil(sent, NEXT_POLL) ? QString() : u"Return does not send it"_s;
}

QString allowDevice(Tour &tour) {
    const QString device = tour.say(u"安娜的手机"_s, u"Anna's phone"_s);
    tour.home().changeScenario(
        {{u"e2ee"_s,
          QJsonObject{{u"replies"_s, QJsonObject{{u"/e2ee/pair"_s,
                                                  QJsonObject{{u"delayMs"_s, CHECK_TAKES_MS}, {u"times"_s, 1}}}}}}}});
    const AskedDevice asked = tour.home().encryption().askDevice(device, u"ios"_s);
    const int before = requestsTo(tour, u"/e2ee/pair"_s);
    QString wrong = firstWrong(
        {[&] {
             return expectAlert(tour, {titleFor(tour, device, u"iPhone"_s), instructions(tour)}, u"device-asks"_s);
         },
         [&] { return typeCode(tour, asked.code); }});
    if (!wrong.isEmpty())
        return wrong;
    tour.waitForRest(tour.windowArea());
    tour.screenshot(u"device-code-typed"_s);
    wrong = firstWrong({[&] { return send(tour, before); },
                        [&] { return expectNotice(tour, tour.say(u"正在验证…"_s, u"Verifying…"_s)); },
                        [&] {
                            return expectNotice(tour, tour.say(u"✓ 已允许「"_s, u"✓ Allowed "_s) + device +
                                                          tour.say(u"」"_s, QString()));
                        }});
    if (!wrong.isEmpty())
        return wrong;
    tour.screenshot(u"device-allowed"_s);
    return requestsTo(tour, u"/e2ee/pair"_s) == before + 1 ? QString() : u"the answer was sent more than once"_s;
}

QString mistypeCode(Tour &tour, AskedDevice &asked, const QString &device) {
    asked = tour.home().encryption().askDevice(device, u"android"_s);
    const QString title = titleFor(tour, device, tour.say(u"安卓手机"_s, u"Android"_s));
    const QString error =
        tour.say(u"配对码与新设备上显示的不一致"_s, u"That isn't the code shown on the new device."_s);
    const int before = requestsTo(tour, u"/e2ee/pair"_s);
    return firstWrong({[&] {
                           return expectAlert(tour, {title, instructions(tour)}, u"second-device-asks"_s);
                       },
                       [&] { return typeCode(tour, otherCode(asked.code)); }, [&] { return send(tour, before); },
                       [&] {
                           return expectAlert(tour, {title, error, instructions(tour)}, u"second-device-wrong-code"_s);
                       }});
}

// From the field Tab leads over the buttons that can be used, in the system's order, to the one that denies.
QString denyDevice(Tour &tour, const QString &device) {
    const QString deny = tour.say(u"拒绝"_s, u"Deny"_s), later = tour.say(u"稍后"_s, u"Later"_s);
    const auto focus = [&] {
        const auto window = tour.window();
        return window ? window->focus().value_or(AccessibleElement()).name : QString();
    };
    for (int stops = 0; stops < 2 && focus() != deny; ++stops) {
        const QString before = focus();
        pressKey(u"Tab"_s);
        tour.waitUntil([&] { return focus() != before && (focus() == deny || focus() == later); }, NEXT_POLL);
    }
    if (focus() != deny)
        return u"Tab does not lead to "_s + deny;
    pressKey(u"space"_s);
    const QString notice = tour.say(u"已拒绝「"_s, u"Denied "_s) + device +
                           tour.say(u"」。如果不是你本人在登录，请立即修改密码"_s,
                                    u". If that wasn't you, change your password immediately."_s);
    if (QString wrong = expectNotice(tour, notice); !wrong.isEmpty())
        return wrong;
    tour.screenshot(u"device-denied"_s);
    return requestsTo(tour, u"/e2ee/reject"_s) == 1 ? QString() : u"the denial was not sent once"_s;
}

QString answerSecond(Tour &tour) {
    const QString device = tour.say(u"客厅平板"_s, u"Living-room tablet"_s);
    AskedDevice asked;
    return firstWrong({[&] { return mistypeCode(tour, asked, device); }, [&] { return denyDevice(tour, device); },
                       [&] {
                           const QString entry = titleFor(tour, device, tour.say(u"安卓手机"_s, u"Android"_s)) + u"…"_s;
                           return expectEntry(tour, entry, false);
                       }});
}

} // namespace

QList<Step> deviceSteps() {
    return {{u"a device asks, its code is typed, Return allows it"_s, allowDevice},
            {u"another is asked for again after a wrong code, and denied"_s, answerSecond}};
}

} // namespace korvel::sim
