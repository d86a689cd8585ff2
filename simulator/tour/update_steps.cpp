#include "simulator/tour/steps.h"

#include "simulator/tour/menu_look.h"
#include "simulator/tour/window_checks.h"

#include <QJsonObject>
#include <QSet>

#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int PACKAGE_BYTES = 4'000'000;
constexpr int BYTES_A_SECOND = 500'000;
constexpr int PROMPT_TAKES_MS = 5000;
constexpr auto DOWNLOADED_WITHIN = std::chrono::seconds(PACKAGE_BYTES / BYTES_A_SECOND + 4);
constexpr auto INSTALLED_WITHIN = std::chrono::milliseconds(PROMPT_TAKES_MS + 4000);

QString screenshotOf(Tour &tour, const QString &name) {
    tour.waitForRest({}); // a notice fades in
    return tour.screenshot(name) ? QString() : u"no screenshot"_s;
}

QString checkEntry(Tour &tour) {
    return entryThatBegins(tour, tour.say(u"检查更新…（当前"_s, u"Check for Updates… ("_s));
}

QString updateEntry(const Tour &tour) { return tour.say(u"⬆ 更新到 2.0…"_s, u"⬆ Update to 2.0…"_s); }

// Waits for an entry that begins so and cannot be chosen.
QString expectGoingOn(Tour &tour, const QString &beginning) {
    const auto shown = [&] {
        return std::ranges::any_of(tour.panel().menu(), [&](const PanelMenuEntry &entry) {
            return entry.title.startsWith(beginning) && !entry.enabled;
        });
    };
    return tour.waitUntil(shown, NEXT_POLL) ? QString() : u"the menu does not say "_s + beginning;
}

QString announce(Tour &tour) {
    const QJsonObject update{{u"ver"_s, u"2.0"_s}, {u"bytes"_s, PACKAGE_BYTES}};
    if (!tour.home().changeScenario({{u"update"_s, update}}))
        return u"the simulated home could not be prepared"_s;
    if (!tour.panel().click(checkEntry(tour)))
        return u"the menu does not offer to check"_s;
    return firstWrong({[&] {
                           return expectNotice(tour, tour.say(u"⬆ 有新版本 2.0，请在菜单中点击「更新到 2.0」"_s,
                                                              u"⬆ Korvel 2.0 is available. Choose Update to 2.0 in the "
                                                              u"menu."_s));
                       },
                       [&] { return screenshotOf(tour, u"update-announced"_s); },
                       [&] { return expectEntry(tour, updateEntry(tour), true); },
                       [&] { return lookAtMenu(tour, u"update-offered"_s); }});
}

// The percent moves while the menu is looked at, and the agent is asked as ever.
QString download(Tour &tour) {
    const QJsonObject slow{{u"mode"_s, u"slow"_s}, {u"bytesPerSecond"_s, BYTES_A_SECOND}};
    const QJsonObject faults{{tour.home().updates().packagePath(), slow}};
    tour.home().changeScenario({{u"server"_s, QJsonObject{{u"faults"_s, faults}}},
                                {u"install"_s, QJsonObject{{u"promptMs"_s, PROMPT_TAKES_MS}}}});
    if (!tour.panel().click(updateEntry(tour)))
        return u"the menu has no entry "_s + updateEntry(tour);
    const QString beginning = tour.say(u"正在下载 2.0… "_s, u"Downloading 2.0… "_s);
    const int polls = requestsTo(tour, u"/health"_s);
    QString wrong = firstWrong(
        {[&] {
             return expectNotice(tour, tour.say(u"↓ 正在下载 2.0（4.0 MB），进度显示在菜单中"_s,
                                                u"↓ Downloading 2.0 (4.0 MB). Progress appears in the "
                                                u"menu."_s));
         },
         [&] { return expectGoingOn(tour, beginning); }, [&] { return screenshotOf(tour, u"update-downloading"_s); },
         [&] { return lookAtMenu(tour, u"update-progress"_s); }});
    if (!wrong.isEmpty())
        return wrong;
    QSet<QString> seen;
    const auto downloaded = [&] {
        const QString now = entryThatBegins(tour, beginning);
        if (!now.isEmpty())
            seen.insert(now);
        return now.isEmpty();
    };
    if (!tour.waitUntil(downloaded, DOWNLOADED_WITHIN))
        return u"the download does not end"_s;
    if (seen.size() < 2)
        return u"the percent did not move"_s;
    return requestsTo(tour, u"/health"_s) > polls ? QString() : u"the agent was not asked meanwhile"_s;
}

QString install(Tour &tour) {
    const QString asks = tour.say(u"正在安装 2.0，请在弹出的对话框中输入 Mac 登录密码"_s,
                                  u"Installing 2.0. Enter your Mac password when prompted."_s);
    const QString done = tour.say(u"✓ 已更新到 2.0"_s, u"✓ Updated to 2.0"_s);
    QString wrong = firstWrong({[&] { return expectNotice(tour, asks); },
                                [&] { return expectGoingOn(tour, tour.say(u"正在安装 2.0…"_s, u"Installing 2.0…"_s)); },
                                [&] { return lookAtMenu(tour, u"update-installing"_s); },
                                [&] {
                                    tour.waitUntil([&] { return tour.notice() == done; }, INSTALLED_WITHIN);
                                    return expectNotice(tour, done);
                                },
                                [&] { return screenshotOf(tour, u"update-installed"_s); }});
    if (!wrong.isEmpty())
        return wrong;
    const QList<QJsonObject> installed = tour.home().installedPackages();
    if (installed.size() != 1 || installed.first().value(u"sha256"_s) != tour.home().updates().offer().info.sha)
        return u"another package was installed"_s;
    return checkEntry(tour).isEmpty() ? u"the menu does not offer to check again"_s : QString();
}

} // namespace

QList<Step> updateSteps() {
    return {{u"an update is announced, and the menu offers it"_s, announce},
            {u"it is downloaded, and the menu shows the percent"_s, download},
            {u"it is installed once the password is typed"_s, install}};
}

} // namespace korvel::sim
