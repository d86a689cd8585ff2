#include "exchange/sha256.h"
#include "journey/update_journey.h"
#include "soak/seed.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <cstdio>
#include <limits>
#include <thread>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

constexpr int SWAPS = 200;
const QByteArray OTHER_PACKAGE = "korvel-package 6.6.6\nput there by somebody else\n";

/// Waits for the package, then changes it after `delay`: another one in its place, a link to another one, a half, or
/// some bytes.
void swap(const QString &package, std::chrono::microseconds delay, quint32 way) {
    using namespace std::chrono_literals;
    const auto until = std::chrono::steady_clock::now() + 20s;
    while (!QFile::exists(package) && std::chrono::steady_clock::now() < until)
        std::this_thread::sleep_for(100us);
    std::this_thread::sleep_for(delay);
    QFile other(package + u".other"_s), mine(package);
    switch (way % 4) {
    case 0:
    case 1:
        if (other.open(QIODevice::WriteOnly))
            other.write(OTHER_PACKAGE);
        other.close();
        if (way % 4 == 1) {
            QFile::link(other.fileName(), package + u".link"_s);
            other.setFileName(package + u".link"_s);
        }
        ::rename(QFile::encodeName(other.fileName()).constData(), QFile::encodeName(package).constData());
        break;
    case 2:
        mine.resize(mine.size() / 2);
        break;
    default:
        if (mine.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) && mine.seek(100))
            mine.write("other");
    }
}

struct UpdateSoak : UpdateJourney {
    QRandomGenerator random{soakSeed()};
};

TEST_F(UpdateSoak, OfTwoHundredPackagesSwappedAtRandomMomentsNoneIsInstalled) {
    offer(u"2.0"_s);
    check();
    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(install(), u"✓ Updated to 2.0"_s);
    const double longest = static_cast<double>(clock.nsecsElapsed()) / 1000;
    QStringList expected = installed();
    QMap<QString, int> ends;
    for (int i = 1; i <= SWAPS; ++i) {
        const QString version = u"2.%1"_s.arg(i);
        // Large enough that the tray's own check takes a while.
        offer(version, {{u"update"_s, QJsonObject{{u"bytes"_s, static_cast<int>(random.bounded(8'000'000))}}}});
        const UpdateInfo info = home.updates().offer().info;
        ASSERT_TRUE(check().contains(version));
        const double part = random.generateDouble();
        const auto delay = std::chrono::microseconds(static_cast<qint64>(part * part * longest)); // rather early
        std::thread swapper(swap, paths.updateDir + u'/' + info.file, delay, random.generate());
        const QString end = install();
        swapper.join();
        if (end.startsWith(u"✓"))
            expected.append(info.sha);
        ASSERT_EQ(installed(), expected) << end.toStdString();
        ++ends[end.startsWith(u"✓") ? u"installed, swapped too late"_s : end];
    }
    for (auto each = ends.cbegin(); each != ends.cend(); ++each)
        std::printf("  %3d  %s\n", each.value(), qUtf8Printable(each.key()));
    EXPECT_EQ(ends.size(), 3); // refused by the tray, refused by the privileged shell, or too late
    EXPECT_EQ(desktop.opened, QStringList());
}

qint64 kilobytesOf(const char *name) {
    QFile status(u"/proc/self/status"_s);
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(name))
            return line.simplified().split(' ').value(1).toLongLong();
    return 0;
}

TEST(HashSoak, AGibibyteTakesAboutAsLongAsTheOpensslProgramAndLittleMemory) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"large"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(1 << 30));
    file.close();
    // The shortest of several times: the first one fills the system's cache, and others compute here too.
    qint64 took = std::numeric_limits<qint64>::max(), theirs = took, kilobytes = 0;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer clock;
        clock.start();
        QProcess openssl;
        openssl.start(u"openssl"_s, {u"dgst"_s, u"-sha256"_s, u"-r"_s, file.fileName()});
        ASSERT_TRUE(openssl.waitForFinished(120'000));
        theirs = std::min(theirs, clock.elapsed());
        QFile peak(u"/proc/self/clear_refs"_s); // the peak begins anew
        ASSERT_TRUE(peak.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && peak.write("5") == 1);
        const qint64 before = kilobytesOf("VmRSS:");
        clock.start();
        EXPECT_EQ(sha256File(file.fileName()), QString::fromLatin1(openssl.readAllStandardOutput().left(64)));
        took = std::min(took, clock.elapsed());
        kilobytes = std::max(kilobytes, kilobytesOf("VmHWM:") - before);
    }
    std::printf("  %lld ms, openssl %lld ms; %lld KiB more\n", static_cast<long long>(took),
                static_cast<long long>(theirs), static_cast<long long>(kilobytes));
    EXPECT_LT(took, theirs * 3 / 2);
    EXPECT_LT(kilobytes, 8 << 10);
}

} // namespace
} // namespace korvel::test
