#include "simulator/tour/steps.h"

#include "simulator/tour/menu_look.h"
#include "simulator/tour/texts.h"
#include "simulator/tour/window_checks.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int PROMPT_TAKES_MS = 800;
constexpr auto ALL_PROMPTS = std::chrono::milliseconds(4 * PROMPT_TAKES_MS);
constexpr auto VERDICT_STAYS = 11s;
constexpr auto REPAIRED_WITHIN = 5s;
const auto ACCESSIBILITY = u"Accessibility"_s; // cannot be granted in a prompt
const auto MICROPHONE = u"Microphone"_s;       // refused in its prompt

QString request(const Tour &tour) { return tour.say(u"申请权限…"_s, u"Request Permissions…"_s); }

QString expectLine(Tour &tour, const QString &line, std::chrono::milliseconds within = NEXT_POLL) {
    return tour.waitForLine(line, within) ? QString() : u"the line reads "_s + tour.statusLine();
}

// Waits until the menu lists so many missing permissions.
QString expectMissing(Tour &tour, int count) {
    const auto matches = [&] {
        const auto menu = tour.panel().menu();
        return count == std::count_if(menu.begin(), menu.end(), [](const PanelMenuEntry &entry) {
                   return entry.enabled && entry.title.startsWith(u"⚠ "_s);
               });
    };
    return tour.waitUntil(matches, NEXT_POLL) ? QString() : u"the menu does not list %1 permissions"_s.arg(count);
}

QString fresh(Tour &tour) {
    const QJsonObject settings{
        {u"start"_s, u"fresh"_s}, {u"promptMs"_s, PROMPT_TAKES_MS}, {u"deny"_s, QJsonArray{MICROPHONE}}};
    if (!tour.home().changeScenario({{u"permissions"_s, settings}}))
        return u"the simulated home could not be prepared"_s;
    const QString heading = tour.say(u"权限 · 缺少 4 项"_s, u"Permissions · 4 missing"_s);
    return firstWrong({[&] {
                           return expectLine(tour,
                                             serverConnectedLine(tour) +
                                                 tour.say(u" · ⚠ 缺少 4 项权限"_s, u" · ⚠ 4 permissions missing"_s));
                       },
                       [&] {
                           tour.panel().open(); // the list is asked for now
                           return expectMissing(tour, 4);
                       },
                       [&] { return entryThatBegins(tour, heading).isEmpty() ? u"no heading"_s : QString(); },
                       [&] { return expectEntry(tour, request(tour), true); },
                       [&] { return lookAtMenu(tour, u"permissions-missing"_s); }});
}

// The user allows two, refuses one, and one more can only be turned on by hand.
QString ask(Tour &tour) {
    const QString coming = tour.say(
        u"系统将多次弹出授权对话框，请都点击「允许」。辅助功能需在系统设置中打开 korvel-agent"_s,
        u"macOS will ask several times. Click Allow each time. For Accessibility, turn on korvel-agent in System "
        u"Settings."_s);
    const QString verdict = tour.say(
        u"仍缺少：辅助功能、麦克风。请在「系统设置 › 隐私与安全性」中打开 korvel-agent"_s,
        u"Still missing: Accessibility, Microphone. Turn on korvel-agent in System Settings › Privacy & Security."_s);
    if (!tour.panel().click(request(tour)))
        return u"the menu has no entry "_s + request(tour);
    QString wrong =
        firstWrong({[&] { return expectNotice(tour, coming); },
                    [&] { return expectEntry(tour, tour.say(u"正在申请…"_s, u"Requesting…"_s), true); },
                    [&] { return tour.screenshot(u"permissions-asked"_s) ? QString() : u"no screenshot"_s; },
                    [&] {
                        tour.waitUntil([&] { return tour.notice() == verdict; }, ALL_PROMPTS);
                        return expectNotice(tour, verdict);
                    },
                    [&] { return tour.screenshot(u"permissions-still-missing"_s) ? QString() : u"no screenshot"_s; },
                    [&] {
                        return expectLine(tour, serverConnectedLine(tour) +
                                                    tour.say(u" · ⚠ 缺少 2 项权限"_s, u" · ⚠ 2 permissions missing"_s));
                    },
                    [&] { return lookAtMenu(tour, u"permissions-two-missing"_s); }});
    if (!wrong.isEmpty())
        return wrong;
    return requestsTo(tour, u"/perms/request"_s) == 1 ? QString() : u"the agent was not asked once"_s;
}

// Its line of the menu opens the settings; what is turned on there shows at the next look.
QString grantByHand(Tour &tour) {
    const QString entry = entryThatBegins(tour, u"⚠ "_s + tour.say(u"辅助功能"_s, ACCESSIBILITY));
    const auto opened = tour.home().opened().size();
    if (entry.isEmpty() || !tour.panel().click(entry))
        return u"the menu does not offer accessibility"_s;
    if (!tour.waitUntil([&] { return tour.home().opened().size() > opened; }, NEXT_POLL) ||
        !tour.home().opened().last().endsWith(u"Privacy_Accessibility"_s))
        return u"the settings of accessibility do not open"_s;
    Permissions permissions = tour.home().permissions();
    if (!permissions.grant(ACCESSIBILITY))
        return u"accessibility cannot be granted"_s;
    if (QString wrong = expectLine(tour, serverConnectedLine(tour) +
                                             tour.say(u" · ⚠ 缺少 1 项权限"_s, u" · ⚠ 1 permission missing"_s));
        !wrong.isEmpty())
        return wrong;
    permissions.grant(MICROPHONE);
    return firstWrong({[&] { return expectLine(tour, serverConnectedLine(tour)); },
                       [&] {
                           tour.panel().open();
                           return expectMissing(tour, 0);
                       },
                       [&] { return expectEntry(tour, request(tour), false); },
                       [&] {
                           const bool gone = tour.waitUntil([&] { return !tour.notice(); }, VERDICT_STAYS);
                           return gone ? QString() : u"the notice stays"_s;
                       },
                       [&] { return lookAtMenu(tour, u"permissions-granted"_s); }});
}

QString repairEntry(const Tour &tour) { return tour.say(u"修复 Korvel"_s, u"Repair Korvel"_s); }

QString breakInstallation(Tour &tour) {
    auto &home = tour.home();
    if (!QFile::remove(home.jobFilePath()) || home.launchctl({u"bootout"_s, Home::agentTarget()}) != 0)
        return u"the job could not be removed"_s;
    const QString line = tour.say(u"后台服务未正确安装，请点击「修复 Korvel」"_s,
                                  u"Korvel isn't installed correctly. Choose Repair Korvel."_s);
    return firstWrong({[&] { return expectLine(tour, line); },
                       [&] { return expectEntry(tour, repairEntry(tour), true); },
                       [&] { return lookAtMenu(tour, u"not-installed"_s); }});
}

QString repair(Tour &tour) {
    if (!tour.panel().open() || !tour.panel().click(repairEntry(tour)))
        return u"the menu has no entry "_s + repairEntry(tour);
    return firstWrong({[&] { return expectNotice(tour, tour.say(u"✓ 已修复"_s, u"✓ Repaired"_s)); },
                       [&] { return tour.screenshot(u"repaired"_s) ? QString() : u"no screenshot"_s; },
                       [&] { return expectLine(tour, serverConnectedLine(tour), REPAIRED_WITHIN); },
                       [&] { return expectEntry(tour, repairEntry(tour), false); },
                       [&] { return QFile::exists(tour.home().jobFilePath()) ? QString() : u"no job file"_s; }});
}

} // namespace

QList<Step> permissionSteps() {
    return {{u"permissions are missing; the line and the menu say which"_s, fresh},
            {u"they are asked for, and a notice says what is still missing"_s, ask},
            {u"what is granted in the settings is seen"_s, grantByHand},
            {u"the installation is broken and the menu offers to repair it"_s, breakInstallation},
            {u"repaired from the menu, and connected again"_s, repair}};
}

} // namespace korvel::sim
