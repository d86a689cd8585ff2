// The fake osascript runs the tray's privileged script on the developer's machine: nothing else may run.

#include "simulator/home_test.h"

#include "simulator/home/home_paths.h"
#include "update/install_script.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace korvel::sim {
namespace {

using namespace Qt::StringLiterals;

struct PrivilegedTest : HomeTest {
    const QByteArray content = "korvel-package 1.4.0\nprogram\n";
    const QString package = folder.filePath(u"it's a copy of /bin/rm \"$d\" on Ann's.pkg"_s);
    const QString victim = folder.filePath(u"victim"_s);

    ProgramRun call() const {
        QFile file(package);
        QDir().mkpath(QFileInfo(package).path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        const QByteArray sha = QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
        return buildInstall(package, {.ver = u"1.4.0"_s, .sha = QString::fromLatin1(sha)});
    }
    Run osascript(const QStringList &arguments) { return run(simulatedRoot() + "/usr/bin/osascript"_L1, arguments); }
};

TEST_F(PrivilegedTest, TheTraysOwnScriptRunsInTheHomeAndLeavesNothing) {
    const Run installed = osascript(call().arguments);
    EXPECT_EQ(installed.status, 0) << installed.error.constData();
    ASSERT_EQ(home.installedPackages().size(), 1);
    EXPECT_EQ(home.installedPackages()[0].value("version"_L1), QJsonValue(u"1.4.0"_s));
    EXPECT_TRUE(QDir(HomePaths{home.path()}.privateTemp()).isEmpty());
}

TEST_F(PrivilegedTest, NoOtherCommandRuns) {
    ProgramRun other = call();
    EXPECT_EQ(osascript(other.arguments.mid(0, 7)).status, 1) << "no prompt";
    for (const QString &script : {u"/bin/rm -f '%1'; /bin/cat %1"_s, u"/private/tmp/../rm; /bin/rm -f '%1'"_s,
                                  u"/bin/rm -f '%1'\"/etc\""_s, u"installer || touch '%1'"_s}) {
        other.arguments[6] = script.arg(victim);
        const Run refused = osascript(other.arguments);
        EXPECT_TRUE(refused.status == 1 && refused.error.endsWith(" (127)\n")) << qPrintable(script);
    }
    EXPECT_FALSE(QFile::exists(victim));
    EXPECT_TRUE(home.installedPackages().isEmpty());
}

} // namespace
} // namespace korvel::sim
