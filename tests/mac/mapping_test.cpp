#include "app/system_parts.h"
#include "base/log.h"
#include "exchange/system_network.h"
#include "mac/native_fake.h"
#include "ports/port_owner.h"
#include "ports/preferred_languages.h"
#include "ui/menu/menu_view.h"
#include "ui/views/edit_menu.h"
#include "ui/views/icon_view.h"
#include "ui/views/notice_view.h"
#include "ui/widgets/icon_image.h"
#include "ui/widgets/notice_window.h"
#include "ui/widgets/picture.h"
#include "ui/widgets/window_front.h"

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

using Calls = std::vector<std::string>;

/// The parts of the Mac program that are not macOS itself, on a fake of it.
struct MacParts : ::testing::Test {
    MacParts() { native::fake() = {}; }
    struct NoPrograms final : Programs {
        ProgramResult run(const ProgramRun &) override { return {}; }
    } programs;
    native::Fake &mac = native::fake();
};

TEST_F(MacParts, TheItemIsToldOnlyWhatChanges) {
    const auto item = makeStatusItem();
    item->show({});
    mac.takeCalls();
    item->apply(IconView{.on = true, .dimmed = false, .toolTip = u"Korvel"_s});
    EXPECT_EQ(mac.takeCalls(), (Calls{"Korvel 0", "plain", "tip Korvel"}));
    item->apply(IconView{.on = true, .dimmed = true, .toolTip = u"Korvel"_s});
    EXPECT_EQ(mac.takeCalls(), Calls{"dimmed"});
    item->apply(IconView{.on = false, .dimmed = true, .toolTip = u"Korvel · Signed out"_s});
    EXPECT_EQ(mac.takeCalls(), (Calls{"Korvel 1", "tip Korvel · Signed out"}));
}

TEST_F(MacParts, ThePicturesAreBlackShapesAtBothDensities) {
    const auto item = makeStatusItem();
    EXPECT_EQ(mac.calls, (Calls{"picture of Korvel at 18", "picture of Korvel at 18"}));
    ASSERT_EQ(mac.pictures.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        const int scale = i % 2 == 0 ? 1 : 2;
        const QImage image = QImage::fromData(QByteArray::fromStdString(mac.pictures[i]));
        ASSERT_EQ(image.size(), QSize(18, 18) * scale);
        EXPECT_EQ(image.pixel(9 * scale, 9 * scale), 0xff000000u) << "the centre square";
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << "the ground";
        // 4 points from the edge lies in the thick frame and inside the thin one.
        EXPECT_EQ(qAlpha(image.pixel(4 * scale, 9 * scale)) > 128, i < 2);
    }
}

TEST_F(MacParts, TheNativeMenuIsTheOneThatFollowsTheState) {
    int opened = 0;
    QList<Action> chosen;
    auto item = makeStatusItem();
    item->show({.menuOpening = [&] { ++opened; }, .chosen = [&](const MenuEntry &e) { chosen.append(e.action); }});
    auto *menu = static_cast<QMenu *>(mac.menu);
    ASSERT_NE(menu, nullptr);
    mac.takeCalls();
    const MenuView view{
        .entries = {{.title = u"A & B"_s, .action = Action::QuitAll, .enabled = true, .toolTip = u"Ends it"_s}}};
    item->apply(view); // before Qt has filled the native menu
    EXPECT_EQ(mac.takeCalls(), Calls{"update menu"});
    mac.menuLength = 1;
    item->apply(view);
    EXPECT_EQ(mac.takeCalls(), (Calls{"update menu", "tip of entry Ends it 0"}));
    Q_EMIT menu->aboutToShow();
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(menu->actions().value(0)->text(), u"A && B"_s) << "Qt takes a single one for a mnemonic";
    menu->actions().value(0)->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(chosen, QList<Action>{Action::QuitAll});
    item.reset();
    EXPECT_EQ(mac.calls.back(), "item gone");
}

TEST_F(MacParts, OtherCopiesLeaveOutThisOneAndThoseThatHaveEnded) {
    mac.processes = {71, ::getpid(), -1, 72};
    const auto copies = makeRunningInstances(Paths());
    EXPECT_EQ(mac.takeCalls(), Calls{"dev.korvel.tray"});
    EXPECT_EQ(copies->others(), (QList<qint64>{71, 72}));
    copies->terminate(72);
    mac.terminated[3] = true;
    EXPECT_FALSE(copies->isTerminated(71));
    EXPECT_TRUE(copies->isTerminated(72));
    copies->forceTerminate(71);
    EXPECT_EQ(mac.takeCalls(), (Calls{"terminate 3", "force 0"}));
}

TEST_F(MacParts, TheDesktopTellsOptionFromOtherKeysAndNamesTheComputer) {
    const auto desktop = makeDesktop(programs, false);
    mac.modifiers = (1ULL << 17) | (1ULL << 18) | (1ULL << 20); // Shift, Control, Command
    EXPECT_FALSE(desktop->optionKeyHeld());
    mac.modifiers = 1ULL << 19;
    EXPECT_TRUE(desktop->optionKeyHeld());
    EXPECT_EQ(desktop->computerName(), QSysInfo::machineHostName());
    mac.name = "安的 Mac";
    EXPECT_EQ(desktop->computerName(), u"安的 Mac"_s);
    desktop->installEditMenu(editMenu());
    EXPECT_EQ(mac.takeCalls(), (Calls{"Korvel", "Edit", "Undo undo: z", "Redo redo: Z", "---", "Cut cut: x",
                                      "Copy copy: c", "Paste paste: v", "Select All selectAll: a", "install"}));
}

TEST_F(MacParts, LanguagesKeepTheirOrder) {
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
    mac.takeCalls();
    mac.script = "function";
    EXPECT_EQ(proxy(), "http://q:3128");
    EXPECT_EQ(mac.takeCalls(), (Calls{"get http://w/wpad.dat", "run function"}));
}

TEST_F(MacParts, ANoticeNeverActivatesTheTray) {
    NoticeWindow notice;
    notice.show({.text = u"Signed out"_s}, {});
    EXPECT_EQ(mac.takeCalls(), (Calls{"notice", "front", "read Signed out"}));
    mac.preventsActivation = true;
    notice.show({.text = u"Paused"_s}, {});
    EXPECT_EQ(mac.takeCalls(), (Calls{"notice", "prevents activation", "front", "read Paused"}));
}

TEST_F(MacParts, ANoticeIsOnTheScreenThatHasTheKeyboard) {
    const QList<QScreen *> screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2);
    for (QScreen *screen : screens) {
        const QPoint middle = screen->geometry().center();
        mac.mainScreen = {.x = double(middle.x()), .y = double(middle.y())};
        EXPECT_EQ(screenInFront(), screen);
    }
}

TEST_F(MacParts, AWindowTakesTheKeyboardAndTheLastOneGivesItBack) {
    NoticeWindow notice;
    notice.show({.text = u"Signed out"_s}, {});
    mac.takeCalls();
    QWidget window, floating;
    bringToFront(window);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(mac.takeCalls(), (Calls{"activate", "key and front", "front"}));
    bringToFront(floating, WindowLevel::Floating);
    EXPECT_EQ(mac.takeCalls(), (Calls{"floating", "activate", "key and front", "front"}));
    window.hide();
    finishLayout();
    floating.close();
    bringToFront(window); // in the same turn of the event loop
    finishLayout();
    EXPECT_EQ(mac.takeCalls(), (Calls{"activate", "key and front", "front"}));
    window.hide();
    finishLayout();
    EXPECT_EQ(mac.takeCalls(), Calls{"hide"});
}

TEST_F(MacParts, LongLinesReachTheSystemLogInPieces) {
    logToSystem();
    log(u"[tray] a line"_s);
    log(QString(301, u'安'));
    setLogSink({});
    ASSERT_EQ(mac.calls.size(), 3u);
    EXPECT_EQ(mac.calls[0], "log [tray] a line");
    EXPECT_EQ(mac.calls[1].size(), 4u + 900u);
    EXPECT_EQ(mac.calls[2], "log 安");
}

TEST_F(MacParts, TheApplicationIsAnAccessoryThatStartsInTheBackgroundAndHearsThatItIsOpenedAgain) {
    EXPECT_TRUE(prepareToolkit().isEmpty());
    EXPECT_EQ(qgetenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM"), "1");
    configureApplication();
    EXPECT_EQ(mac.takeCalls(), Calls{"accessory"});
    int reopened = 0;
    auto listener = listenForReopen([&] { ++reopened; });
    mac.reopen();
    EXPECT_EQ(reopened, 1);
    listener.reset();
    EXPECT_FALSE(mac.reopen);
}

TEST_F(MacParts, APortIsTrustedOnlyWhereAProcessOfThisUserListensOnIt) {
    constexpr quint16 PORT = 8790;
    EXPECT_EQ(portOwner(PORT), PortOwner::Unknown); // the system names no process
    const native::TcpSocket good{.kind = native::TCP_SOCKET,
                                 .state = native::LISTENING,
                                 .versions = native::SPEAKS_V4 | 2,
                                 .port = htons(PORT),
                                 .address = htonl(INADDR_LOOPBACK)};
    const auto changed = [&good](auto native::TcpSocket::*field, auto value) {
        native::TcpSocket socket = good;
        socket.*field = value;
        return socket;
    };
    mac.sockets = {{1, {}},
                   {2,
                    {changed(&native::TcpSocket::kind, 1), changed(&native::TcpSocket::state, 4),
                     changed(&native::TcpSocket::versions, 2u), changed(&native::TcpSocket::port, htons(80)),
                     changed(&native::TcpSocket::address, htonl(0x7f000002))}}};
    EXPECT_EQ(portOwner(PORT), PortOwner::Nobody);
    mac.sockets[2].push_back(good);
    EXPECT_EQ(portOwner(PORT), PortOwner::Trusted);
    mac.sockets[2].back().address = htonl(INADDR_ANY);
    EXPECT_EQ(portOwner(PORT), PortOwner::Trusted);
}

} // namespace
} // namespace korvel::test
