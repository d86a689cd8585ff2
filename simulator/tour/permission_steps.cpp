#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

#include <QFile>
#include <QJsonArray>
#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int PROMPT_TAKES_MS = 800;
constexpr auto ALL_PROMPTS = std::chrono::milliseconds(4 * PROMPT_TAKES_MS);
const auto ACCESSIBILITY = u"Accessibility"_s; // not granted by a prompt
const auto MICROPHONE = u"Microphone"_s;       // refused in its prompt

QString requestEntry() { return L(u"申请权限…", u"Request Permissions…"); }

QString repairEntry() { return L(u"修复 Korvel", u"Repair Korvel"); }

/// Waits until the menu lists this number of missing permissions.
void expectMissing(Tour &tour, int count) {
    tour.panel().open(); // requests the list
    const auto matches = [&] {
        return count == std::ranges::count_if(tour.panel().menu(), [](const PanelMenuEntry &entry) {
                   return entry.enabled && entry.title.startsWith(u"⚠ "_s);
               });
    };
    expect(tour.waitUntil(matches, NEXT_POLL), u"the menu does not list %1 permissions"_s.arg(count));
}

void fresh(Tour &tour) {
    const QJsonObject settings{
        {u"start"_s, u"fresh"_s}, {u"promptMs"_s, PROMPT_TAKES_MS}, {u"deny"_s, QJsonArray{MICROPHONE}}};
    change(tour, {{u"permissions"_s, settings}});
    expectLine(tour, serverConnectedLine() + L(u" · ⚠ 缺少 4 项权限", u" · ⚠ 4 permissions missing"));
    expectMissing(tour, 4);
    const QString heading = L(u"权限 · 缺少 4 项", u"Permissions · 4 missing");
    expect(!entryThatBegins(tour, heading).isEmpty(), u"no heading"_s);
    expectEntry(tour, requestEntry(), true);
    captureMenu(tour, u"permissions-missing"_s);
}

/// The user allows two, refuses one, and has to turn on one by hand.
void request(Tour &tour) {
    choose(tour, requestEntry());
    expectNotice(tour, L(u"系统将多次弹出授权对话框，请都点击「允许」。辅助功能需在系统设置中打开 korvel-agent",
                         u"macOS will ask several times. Click Allow each time. For Accessibility, turn on "
                         u"korvel-agent in System Settings."));
    expectEntry(tour, L(u"正在申请…", u"Requesting…"), true);
    expect(tour.screenshot(u"permissions-requested"_s), u"no screenshot"_s);
    expectNotice(tour,
                 L(u"仍缺少：辅助功能、麦克风。请在「系统设置 › 隐私与安全性」中打开 korvel-agent",
                   u"Still missing: Accessibility, Microphone. Turn on korvel-agent in System Settings › Privacy & "
                   u"Security."),
                 ALL_PROMPTS + NEXT_POLL);
    screenshot(tour, u"permissions-still-missing"_s);
    expectLine(tour, serverConnectedLine() + L(u" · ⚠ 缺少 2 项权限", u" · ⚠ 2 permissions missing"));
    captureMenu(tour, u"permissions-two-missing"_s);
    expectRequests(tour, u"/perms/request"_s, 1);
}

/// Its menu entry opens the settings. The permission turned on there appears in the next report.
void grantByHand(Tour &tour) {
    const auto opened = tour.home().opened().size();
    choose(tour, entryThatBegins(tour, L(u"⚠ 辅助功能", u"⚠ Accessibility")));
    expect(tour.waitUntil([&] { return tour.home().opened().size() > opened; }, NEXT_POLL) &&
               tour.home().opened().last().endsWith(u"Privacy_Accessibility"_s),
           u"the settings of accessibility do not open"_s);
    tour.home().permissions().grant(ACCESSIBILITY);
    expectLine(tour, serverConnectedLine() + L(u" · ⚠ 缺少 1 项权限", u" · ⚠ 1 permission missing"));
    tour.home().permissions().grant(MICROPHONE);
    expectLine(tour, serverConnectedLine());
    expectMissing(tour, 0);
    expectEntry(tour, requestEntry(), false);
    expectNoNotice(tour, 11s);
    captureMenu(tour, u"permissions-granted"_s);
}

void breakInstallation(Tour &tour) {
    auto &home = tour.home();
    expect(QFile::remove(home.jobFilePath()) && home.launchctl({u"bootout"_s, Home::agentTarget()}) == 0,
           u"the job could not be removed"_s);
    expectLine(tour, L(u"后台服务未正确安装，请点击「修复 Korvel」",
                       u"Korvel isn't installed correctly. Choose Repair Korvel."));
    expectEntry(tour, repairEntry(), true);
    captureMenu(tour, u"not-installed"_s);
}

void repair(Tour &tour) {
    choose(tour, repairEntry());
    expectNotice(tour, L(u"✓ 已修复", u"✓ Repaired"));
    screenshot(tour, u"repaired"_s);
    expectLine(tour, serverConnectedLine(), 5s);
    expectEntry(tour, repairEntry(), false);
    expect(QFile::exists(tour.home().jobFilePath()), u"no job file"_s);
}

} // namespace

QList<Step> permissionSteps() {
    return {{u"permissions are missing; the line and the menu say which"_s, fresh},
            {u"they are requested, and a notice says what is still missing"_s, request},
            {u"what is granted in the settings is seen"_s, grantByHand},
            {u"the installation is broken and the menu offers to repair it"_s, breakInstallation},
            {u"repaired from the menu, and connected again"_s, repair}};
}

} // namespace korvel::sim
