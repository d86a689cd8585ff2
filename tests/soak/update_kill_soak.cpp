#include "exchange/sha256.h"
#include "soak/panel_tray.h"
#include "soak/seed.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

constexpr int KILLS = 50;

struct UpdateKillSoak : PanelTray {
    QRandomGenerator random{soakSeed()};
    QElapsedTimer clock; ///< Since the update was chosen.
    UpdateInfo info;
    QStringList good; ///< The hashes of everything that was ever offered.

    void SetUp() override {
        ASSERT_TRUE(home.startAccountServer());
        installAndSignIn();
        configure(u"server"_s, home.accountServer());
    }
    void publish(const QString &version) {
        const QJsonObject slow{{u"mode"_s, u"slow"_s}, {u"bytesPerSecond"_s, 800'000}};
        home.setScenario({{u"update"_s, QJsonObject{{u"ver"_s, version}, {u"bytes"_s, 600'000}}},
                          {u"install"_s, QJsonObject{{u"promptMs"_s, 200}}}});
        info = home.updates().offer().info;
        good.append(info.sha);
        home.changeScenario(
            {{u"server"_s, QJsonObject{{u"faults"_s, QJsonObject{{home.updates().packagePath(), slow}}}}}});
    }
    /// Starts the tray and chooses the update that it finds.
    void startAndChoose() {
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(panel.click(entry(u"Check for Updates… ("_s)));
        ASSERT_TRUE(panel.click(entry(u"⬆ Update to "_s + info.ver)));
        clock.start();
    }
    /// Takes the update to its end, in so many milliseconds.
    void goThrough(qint64 &took) {
        const auto before = home.installedPackages().size();
        ASSERT_NO_FATAL_FAILURE(startAndChoose());
        ASSERT_NE(entry(u"Check for Updates… ("_s), QString()); // nothing is left to be done
        took = clock.elapsed();
        EXPECT_GT(home.installedPackages().size(), before);
        kill();
    }
    void kill() {
        const QByteArray output = stop(SIGKILL);
        EXPECT_FALSE(output.contains("[update]")) << output.constData();
        process.reset();
    }
    /// What the killed tray left; a whole package has to be the one that was offered.
    QString left() const {
        const QString package = paths.updateDir + u'/' + info.file;
        if (!QFile::exists(package))
            return QFile::exists(package + u".part"_s) ? u"a part"_s : u"nothing"_s;
        EXPECT_EQ(sha256File(package), info.sha);
        return u"the package"_s;
    }
};

TEST_F(UpdateKillSoak, AfterFiftyKillsAtRandomMomentsTheUpdateStillGoesThroughWhole) {
    qint64 longest = 0, last = 0;
    publish(u"2.0"_s);
    ASSERT_NO_FATAL_FAILURE(goThrough(longest));
    QMap<QString, int> leftovers;
    for (int i = 1; i <= KILLS; ++i) {
        SCOPED_TRACE(i);
        if (random.bounded(2) == 1) // else the next try meets what the last one left
            publish(u"2.%1"_s.arg(i));
        ASSERT_NO_FATAL_FAILURE(startAndChoose());
        const qint64 delay = random.bounded(longest);
        panel.waitUntil([&] { return clock.elapsed() >= delay; }, std::chrono::minutes(1));
        kill();
        ++leftovers[left()];
    }
    goThrough(last);
    for (const QJsonObject &package : home.installedPackages())
        EXPECT_TRUE(good.contains(package.value(u"sha256"_s).toString()));
    for (auto each = leftovers.cbegin(); each != leftovers.cend(); ++each)
        std::printf("  %3d times %s was left\n", each.value(), qUtf8Printable(each.key()));
    std::printf("  %d installations\n", static_cast<int>(home.installedPackages().size()));
    EXPECT_EQ(leftovers.size(), 3);
}

} // namespace
} // namespace korvel::test
