#include "app/system_parts.h"
#include "base/log.h"
#include "exchange/system_network.h"
#include "mac/native_fake.h"
#include "ports/port_owner.h"
#include "support/fakes.h"
#include "ui/menu/menu_view.h"
#include "ui/views/edit_menu.h"
#include "ui/views/icon_view.h"
#include "ui/views/notice_view.h"
#include "ui/widgets/icons.h"
#include "ui/widgets/notice_window.h"
#include "ui/widgets/picture.h"
#include "ui/widgets/windows.h"

#include <QApplication>
#include <QImage>
#include <QMenu>
#include <QScreen>
#include <QSysInfo>
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

/// The parts of the Mac program that are not macOS itself, on a fake of it.
struct MacParts : ::testing::Test {
    MacParts() { native::fake() = {}; }
    FakePrograms programs;
    native::Fake &mac = native::fake();

    /// Expects these calls since the last time.
    void expect(const std::vector<std::string> &calls) { EXPECT_EQ(std::exchange(mac.calls, {}), calls); }
};

TEST_F(MacParts, TheItemIsSetOnlyWhenItChangesAndItsPicturesAreBlackShapesAtBothDensities) {
    const auto item = makeStatusItem();
    item->show({});
    expect({"picture of Korvel at 18", "picture of Korvel at 18", "item"});
    item->apply(IconView{.on = true, .dimmed = false, .toolTip = u"Korvel"_s});
    expect({"Korvel 0", "plain", "tip Korvel"});
    item->apply(IconView{.on = true, .dimmed = true, .toolTip = u"Korvel"_s});
    expect({"dimmed"});
    item->apply(IconView{.on = false, .dimmed = true, .toolTip = u"Korvel · Signed out"_s});
    expect({"Korvel 1", "tip Korvel · Signed out"});
    ASSERT_EQ(mac.pictures.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        const int scale = i % 2 == 0 ? 1 : 2;
        const QImage image = QImage::fromData(QByteArray::fromStdString(mac.pictures[i]));
        ASSERT_EQ(image.size(), QSize(18, 18) * scale);
        EXPECT_EQ(image.pixel(9 * scale, 9 * scale), 0xff000000u) << "the centre square";
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << "the ground";
        EXPECT_EQ(qAlpha(image.pixel(4 * scale, 9 * scale)) > 128, i < 2) << "in the thick frame only";
    }
}

TEST_F(MacParts, TheNativeMenuFollowsTheState) {
    int opened = 0;
    QList<Action> chosen;
    auto item = makeStatusItem();
    item->show({.menuOpening = [&] { ++opened; }, .chosen = [&](const MenuEntry &e) { chosen.append(e.action); }});
    auto *menu = static_cast<QMenu *>(mac.menu);
    ASSERT_NE(menu, nullptr);
    mac.calls.clear();
    const MenuEntry quit{.title = u"A & B"_s, .action = Action::QuitAll, .enabled = true, .toolTip = u"Ends it"_s};
    item->apply(MenuView{.entries = {quit}}); // before Qt has filled the native menu
    expect({"update menu"});
    mac.menuLength = 1;
    item->apply(MenuView{.entries = {quit}});
    expect({"update menu", "tip of entry Ends it 0"});
    Q_EMIT menu->aboutToShow();
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(menu->actions().value(0)->text(), u"A && B"_s) << "Qt takes a single one for a mnemonic";
    menu->actions().value(0)->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(chosen, QList<Action>{Action::QuitAll});
    item.reset();
    expect({"item gone"});
}

TEST_F(MacParts, OtherInstancesExcludeThisOneAndThoseThatHaveEnded) {
    mac.processes = {71, ::getpid(), -1, 72};
    const auto instances = makeRunningInstances(Paths());
    EXPECT_EQ(instances->others(), (QList<qint64>{71, 72}));
    instances->terminate(72);
    mac.terminated[3] = true;
    EXPECT_FALSE(instances->isTerminated(71));
    EXPECT_TRUE(instances->isTerminated(72));
    instances->forceTerminate(71);
    expect({"dev.korvel.tray", "terminate 3", "force 0"});
}

TEST_F(MacParts, TheDesktopKnowsOptionTheNameOfTheComputerAndTheLanguages) {
    const auto desktop = makeDesktop(programs, false);
    mac.modifiers = (1ULL << 17) | (1ULL << 18) | (1ULL << 20); // Shift, Control, Command
    EXPECT_FALSE(desktop->optionKeyHeld());
    mac.modifiers = 1ULL << 19;
    EXPECT_TRUE(desktop->optionKeyHeld());
    EXPECT_EQ(desktop->computerName(), QSysInfo::machineHostName());
    mac.name = "安的 Mac";
    EXPECT_EQ(desktop->computerName(), u"安的 Mac"_s);
    desktop->installEditMenu(editMenu());
    expect({"Korvel", "Edit", "Undo undo: z", "Redo redo: Z", "---", "Cut cut: x", "Copy copy: c", "Paste paste: v",
            "Select All selectAll: a", "install"});
    EXPECT_EQ(preferredLanguages(), QStringList());
    mac.languages = "zh-Hans-CN\nen-US";
    EXPECT_EQ(preferredLanguages(), (QStringList{u"zh-Hans-CN"_s, u"en-US"_s}));
}

TEST_F(MacParts, TheSystemsProxyIsNamedAsLibcurlWritesIt) {
    const auto proxy = [] { return exchange::systemProxyFor("https://a.example/"); };
    EXPECT_EQ(proxy(), "");
    mac.proxy = {.isHttp = true, .host = "p", .port = 8080};
    EXPECT_EQ(proxy(), "http://p:8080");
    mac.proxy = {.isSocks = true, .host = "s", .port = 1080};
    EXPECT_EQ(proxy(), "socks5h://s:1080");
    mac.proxy = {.script = "http://w/wpad.dat"};
    mac.scriptProxy = {.isHttp = true, .host = "q", .port = 3128};
    EXPECT_EQ(proxy(), "");
    mac.script = "function";
    EXPECT_EQ(proxy(), "http://q:3128");
    expect({"get http://w/wpad.dat", "get http://w/wpad.dat", "run function"});
}

TEST_F(MacParts, ANoticeNeverActivatesTheTrayAndIsOnTheScreenThatHasTheKeyboard) {
    NoticeWindow notice;
    notice.show({.text = u"Signed out"_s}, {});
    expect({"notice", "front", "read Signed out"});
    mac.preventsActivation = true;
    notice.show({.text = u"Paused"_s}, {});
    expect({"notice", "prevents activation", "front", "read Paused"});
    ASSERT_EQ(QGuiApplication::screens().size(), 2);
    for (QScreen *screen : QGuiApplication::screens()) {
        const QPoint middle = screen->geometry().center();
        mac.mainScreen = {.x = double(middle.x()), .y = double(middle.y())};
        EXPECT_EQ(screenInFront(), screen);
    }
}

TEST_F(MacParts, AWindowTakesTheKeyboardAndTheLastOneGivesItBack) {
    NoticeWindow notice;
    notice.show({.text = u"Signed out"_s}, {}); // counts as no window
    mac.calls.clear();
    QWidget window, floating;
    bringToFront(window);
    expect({"activate", "key and front", "front"});
    bringToFront(floating, WindowLevel::Floating);
    expect({"floating", "activate", "key and front", "front"});
    window.hide();
    finishLayout();
    expect({});
    floating.close();
    bringToFront(window); // in the same turn of the event loop
    finishLayout();
    expect({"activate", "key and front", "front"});
    window.hide();
    finishLayout();
    expect({"hide"});
}

TEST_F(MacParts, TheApplicationIsAnAccessoryThatNoticesAReopenAndLogsInPieces) {
    EXPECT_TRUE(prepareToolkit().isEmpty());
    EXPECT_EQ(qgetenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM"), "1");
    configureApplication();
    int reopened = 0;
    auto listener = listenForReopen([&] { ++reopened; });
    mac.reopen();
    EXPECT_EQ(reopened, 1);
    listener.reset();
    EXPECT_FALSE(mac.reopen);
    logToSystem();
    log(u"[tray] a line"_s);
    log(QString(301, u'安'));
    setLogSink({});
    expect({"accessory", "log [tray] a line", "log " + QString(300, u'安').toStdString(), "log 安"});
}

TEST_F(MacParts, APortIsTrustedOnlyWhereAProcessOfThisUserListensOnIt) {
    constexpr quint16 PORT = 8790;
    EXPECT_EQ(portOwner(PORT), PortOwner::Unknown); // the system names no process
    const native::TcpSocket good{.kind = native::TCP_SOCKET,
                                 .state = native::LISTENING,
                                 .versions = native::SPEAKS_V4 | 2,
                                 .port = htons(PORT),
                                 .address = htonl(INADDR_LOOPBACK)};
    std::vector<native::TcpSocket> others(5, good);
    others[0].kind = 1;
    others[1].state = 4;
    others[2].versions = 2;
    others[3].port = htons(80);
    others[4].address = htonl(0x7f000002);
    mac.sockets = {{1, {}}, {2, others}};
    EXPECT_EQ(portOwner(PORT), PortOwner::Nobody);
    for (const auto address : {INADDR_LOOPBACK, INADDR_ANY}) {
        mac.sockets[1] = {good};
        mac.sockets[1][0].address = htonl(address);
        EXPECT_EQ(portOwner(PORT), PortOwner::Trusted);
    }
}

} // namespace
} // namespace korvel::test
