#include "desktop/panel_tray.h"
#include "support/signing.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace {
/// By how many seconds this process's wall clock is wrong.
std::atomic<std::time_t> clockJump{0};
} // namespace

/// Takes the place of the C library's.
extern "C" std::time_t time(std::time_t *out) noexcept {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const std::time_t shown = now.tv_sec + clockJump;
    if (out)
        *out = shown;
    return shown;
}

namespace korvel::test {
namespace {

constexpr int POLLS = 28'800, WARM_UP = POLLS / 10, POLLS_AN_EVENT = 24;
constexpr std::time_t YEAR = 365 * 24 * 3600;
constexpr double MAX_GROWTH_MIB = 4; // AddressSanitizer, which keeps freed memory, exceeds it

qsizetype entriesOf(const QString &folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size();
}

QByteArray contentOf(const QString &path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// What this process holds. Linux only.
struct Held {
    double mebibytes = contentOf(u"/proc/self/statm"_s).split(' ').value(1).toDouble() *
                       static_cast<double>(::sysconf(_SC_PAGESIZE)) / (1 << 20);
    qsizetype descriptors = entriesOf(u"/proc/self/fd"_s);
    qsizetype threads = entriesOf(u"/proc/self/task"_s);
    qsizetype children = contentOf(u"/proc/self/task/%1/children"_s.arg(::getpid())).split(' ').size();
};

/// Counts requests.
struct CountingHttp final : HttpClient {
    explicit CountingHttp(HttpClient &c) : client(c) {}
    void send(HttpRequest request, Done<HttpReply> done) override {
        ++count;
        client.send(std::move(request), std::move(done));
    }
    HttpClient &client;
    int count = 0;
};

/// Random events of one home. The same seed chooses the same ones.
struct Chance {
    explicit Chance(sim::SimulatedHome &h) : home(h) {}

    template <class List>
    auto any(const List &list) {
        return list[static_cast<qsizetype>(random.bounded(static_cast<quint32>(std::size(list))))];
    }
    void agentFails() {
        home.changeScenario(
            agentFault(u"/health"_s, {{u"mode"_s, any(QStringList{u"close"_s, u"reset"_s, u"garbage"_s, u"truncate"_s,
                                                                  u"html"_s, u"deep"_s, u"exit"_s})},
                                      {u"times"_s, 5}}));
    }
    void encryptionChanges() {
        sim::Encryption encryption = home.encryption();
        const int which = random.bounded(5);
        if (which == 0)
            encryption.requestJoin(u"Phone %1"_s.arg(random.bounded(3)), u"ios"_s);
        else if (which == 1)
            encryption.raiseAlarm(u"Look at this"_s);
        else if (which == 2)
            encryption.raiseResetAlarm();
        else
            encryption.setState(any(QStringList{u"waiting"_s, u"pending"_s, u"active"_s, u"rejected"_s, u"revoked"_s,
                                                u"suspended"_s, u"off"_s}));
    }
    /// What goes wrong without the user.
    const QList<std::function<void()>> troubles{[this] { agentFails(); }, [this] { home.killAgent(SIGKILL); },
                                                [this] { encryptionChanges(); }, [this] { home.signOut(); }};
    /// All that is wrong with the agent passes.
    void recover() {
        home.setScenario(GOOD);
        home.killAgent(SIGCONT);
        home.signIn(u"ann"_s);
    }

    static inline const QJsonObject GOOD{{u"connectMs"_s, 0},
                                         {u"launchd"_s, QJsonObject{{u"throttleMs"_s, 50}}},
                                         {u"update"_s, QJsonObject{{u"ver"_s, u"9.0"_s}, {u"edition"_s, u"cn"_s}}}};
    sim::SimulatedHome &home;
    QRandomGenerator random{static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED"))};
};

/// A user's day with the tray, some hundred times as fast, with everything going wrong that can.
struct DaySoak : Journey {
    DaySoak() : Journey(300) {}
    CountingHttp counted{http};
    Chance chance{home};
    QRandomGenerator &random = chance.random;

    void SetUp() override {
        fixed.UPDATE_PUBKEY = PUBLIC_KEY;
        ASSERT_TRUE(home.startAccountServer());
        installAndSignIn();
        configure(u"server"_s, home.accountServer());
        home.setScenario(Chance::GOOD);
        launch(counted);
    }
    void TearDown() override { clockJump = 0; }

    /// Lets the tray send so many requests.
    void pass(int requests) {
        const int until = counted.count + requests;
        ASSERT_TRUE(eventually([&] { return counted.count >= until; }, std::chrono::minutes(2)));
    }
    void userChooses() {
        item.events.menuOpening();
        item.press(chance.any(QList{Action::CheckUpdate, Action::InstallUpdate, Action::MenuToggle,
                                    Action::LogoutDialog, Action::ShowPair, Action::E2AsrInstall, Action::AskPerms}));
    }
    void agentStops() {
        if (random.bounded(20) == 0 && home.killAgent(SIGSTOP)) {
            pass(6);
            home.killAgent(SIGCONT);
        }
    }
    void userAnswers() {
        if (alerts.isOpen())
            alerts.answer(random.bounded(static_cast<int>(alerts.view.buttons.size())), {u"123456"_s});
    }
    void clockJumps() { clockJump = chance.any(std::array{-YEAR, std::time_t{0}, YEAR}); }
    const QList<std::function<void()>> events =
        chance.troubles + QList<std::function<void()>>{[this] { agentStops(); }, [this] { userChooses(); },
                                                       [this] { userAnswers(); }, [this] { clockJumps(); }, [] {}};
    void recover() {
        chance.recover();
        if (item.entry(Action::MenuToggle).title.startsWith(u"Resume"))
            item.press(Action::MenuToggle);
    }
    Held settled() {
        recover();
        home.encryption().setState(u"active"_s);
        EXPECT_TRUE(eventually(
            [this] {
                if (alerts.isOpen())
                    alerts.dismiss();
                recover();
                return item.statusLine() == CONNECTED && !tray->currentState().update.updateBusy;
            },
            std::chrono::minutes(2)))
            << item.statusLine().toStdString();
        EXPECT_TRUE(eventually([] { return exchangesOf(::getpid()).isEmpty(); }));
        return {};
    }
};

TEST_F(DaySoak, ADayLeavesNoTrace) {
    std::optional<Held> early;
    for (int polls = 0; polls < POLLS; polls += POLLS_AN_EVENT) {
        if (!early && polls >= WARM_UP)
            early = settled();
        if (random.bounded(2) == 0)
            recover();
        chance.any(events)();
        ASSERT_NO_FATAL_FAILURE(pass(POLLS_AN_EVENT));
    }
    const Held late = settled();
    for (const Held &held : {*early, late})
        std::printf("%.1f MiB, %lld descriptors, %lld threads, %lld children\n", held.mebibytes, held.descriptors,
                    held.threads, held.children);
    EXPECT_LT(late.mebibytes - early->mebibytes, MAX_GROWTH_MIB);
    EXPECT_LE(late.descriptors - early->descriptors, 4); // a connection more or less
    EXPECT_LE(late.threads, std::max<qsizetype>(early->threads, 8));
    EXPECT_LE(late.children, early->children);

    const int icons = item.iconChanges, menus = item.menuChanges;
    const auto noticesShown = notices.shown.size();
    ASSERT_NO_FATAL_FAILURE(pass(600)); // half an hour in which nothing happens
    EXPECT_EQ(item.iconChanges, icons);
    EXPECT_LE(item.menuChanges - menus, 2); // a check for updates may fall due
    EXPECT_EQ(notices.shown.size(), noticesShown);
}

/// The tray in the panel, watched on the bus.
struct BusSoak : PanelTray {
    static constexpr auto SILENCE = std::chrono::milliseconds(500);
    using Picture = std::pair<QStringList, QList<QImage>>;

    Chance chance{home};
    int changes = 0;

    Picture picture() {
        const sim::PanelItem shown = panel.item().value_or(sim::PanelItem{});
        Picture now{{shown.toolTipTitle}, shown.icons};
        for (const sim::PanelMenuEntry &e : panel.menu())
            now.first.append(u"%1 %2 %3"_s.arg(e.title).arg(e.enabled).arg(e.visible));
        return now;
    }
    /// Watches for a time. Signals that follow each other closely belong to one change.
    void watch(std::chrono::milliseconds time, Picture &last) {
        QElapsedTimer clock;
        clock.start();
        while (panel.waitUntil([&] { return panel.signalCount() > 0; },
                               time - std::chrono::milliseconds(clock.elapsed()))) {
            Picture now;
            for (int seen = 0; seen != panel.signalCount();) {
                seen = panel.signalCount();
                pass(SILENCE);
                now = picture();
            }
            EXPECT_NE(now, last) << "the same menu and icon again: " << now.first.join(u", ").toStdString();
            ++changes;
            last = now;
            panel.clearSignals();
        }
    }
};

TEST_F(BusSoak, EveryMessageChangesWhatThePanelShows) {
    installAndSignIn();
    ASSERT_NO_FATAL_FAILURE(start());
    ASSERT_TRUE(lineIs(CONNECTED));
    pass(SILENCE);
    panel.clearSignals();
    Picture last = picture();
    const auto events = chance.troubles + QList<std::function<void()>>{[this] { chance.recover(); }};
    for (int event = 0; event < 60; ++event) {
        chance.any(events)();
        watch(std::chrono::seconds(4), last);
    }
    chance.recover();
    home.encryption().setState(u"active"_s);
    ASSERT_TRUE(lineIs(CONNECTED));
    watch(std::chrono::seconds(20), last);
    EXPECT_GT(std::exchange(changes, 0), 10);
    watch(std::chrono::minutes(1), last);
    EXPECT_EQ(changes, 0);
    end();
}

} // namespace
} // namespace korvel::test
