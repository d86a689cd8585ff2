#include "simulator/tour/controls.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/texts.h"

#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int PACKAGE_BYTES = 4'000'000;
constexpr int BYTES_A_SECOND = 500'000;
constexpr int PROMPT_TAKES_MS = 5000;
constexpr auto DOWNLOAD_TIMEOUT = std::chrono::seconds(PACKAGE_BYTES / BYTES_A_SECOND + 4);
constexpr auto INSTALL_TIMEOUT = std::chrono::milliseconds(PROMPT_TAKES_MS + 4000);

QString checkEntry(Tour &tour) { return entryThatBegins(tour, L(u"检查更新…（当前", u"Check for Updates… (")); }

QString updateEntry() { return L(u"⬆ 更新到 2.0…", u"⬆ Update to 2.0…"); }

/// Waits for a disabled entry with that beginning.
void expectGoingOn(Tour &tour, const QString &beginning) {
    const auto shown = [&] {
        return std::ranges::any_of(tour.panel().menu(), [&](const PanelMenuEntry &entry) {
            return entry.title.startsWith(beginning) && !entry.enabled;
        });
    };
    expect(tour.waitUntil(shown, NEXT_POLL), u"the menu does not say "_s + beginning);
}

void announce(Tour &tour) {
    change(tour, {{u"update"_s, QJsonObject{{u"ver"_s, u"2.0"_s}, {u"bytes"_s, PACKAGE_BYTES}}}});
    choose(tour, checkEntry(tour));
    expectNotice(tour, L(u"⬆ 有新版本 2.0，请在菜单中点击「更新到 2.0」",
                         u"⬆ Korvel 2.0 is available. Choose Update to 2.0 in the menu."));
    screenshot(tour, u"update-announced"_s);
    expectEntry(tour, updateEntry(), true);
    captureMenu(tour, u"update-offered"_s);
}

/// The percentage changes while the menu is open, and polls continue.
void download(Tour &tour) {
    const QJsonObject slow{{u"mode"_s, u"slow"_s}, {u"bytesPerSecond"_s, BYTES_A_SECOND}};
    const QJsonObject faults{{tour.home().updates().packagePath(), slow}};
    change(tour, {{u"server"_s, QJsonObject{{u"faults"_s, faults}}},
                  {u"install"_s, QJsonObject{{u"promptMs"_s, PROMPT_TAKES_MS}}}});
    choose(tour, updateEntry());
    const QString beginning = L(u"正在下载 2.0… ", u"Downloading 2.0… ");
    const int polls = requestsTo(tour, u"/health"_s);
    expectNotice(tour, L(u"↓ 正在下载 2.0（4.0 MB），进度显示在菜单中",
                         u"↓ Downloading 2.0 (4.0 MB). Progress appears in the menu."));
    expectGoingOn(tour, beginning);
    screenshot(tour, u"update-downloading"_s);
    captureMenu(tour, u"update-progress"_s);
    expectProgress(tour, beginning, DOWNLOAD_TIMEOUT);
    expect(requestsTo(tour, u"/health"_s) > polls, u"the agent was not polled meanwhile"_s);
}

void install(Tour &tour) {
    expectNotice(tour, L(u"正在安装 2.0，请在弹出的对话框中输入 Mac 登录密码",
                         u"Installing 2.0. Enter your Mac password when prompted."));
    expectGoingOn(tour, L(u"正在安装 2.0…", u"Installing 2.0…"));
    captureMenu(tour, u"update-installing"_s);
    expectNotice(tour, L(u"✓ 已更新到 2.0", u"✓ Updated to 2.0"), INSTALL_TIMEOUT);
    screenshot(tour, u"update-installed"_s);
    const QList<QJsonObject> installed = tour.home().installedPackages();
    expect(installed.size() == 1 && installed[0].value("sha256"_L1) == tour.home().updates().offer().info.sha,
           u"another package was installed"_s);
    expect(!checkEntry(tour).isEmpty(), u"the menu does not offer to check again"_s);
}

} // namespace

QList<Step> updateSteps() {
    return {{u"an update is announced, and the menu offers it"_s, announce},
            {u"it is downloaded, and the menu shows the percent"_s, download},
            {u"it is installed once the password is typed"_s, install}};
}

} // namespace korvel::sim
