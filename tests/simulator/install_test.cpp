#include "home_fixture.h"

#include "update/install_script.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <future>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const QByteArray PACKAGE = "korvel-package 1.4.0\nprogram\n";

QString sha256(const QByteArray &content) {
    return QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
}

// The calls that the tray makes, with the stand-ins.
class InstallTest : public HomeTest {
protected:
    InstallTest() { EXPECT_TRUE(QDir().mkpath(QFileInfo(package).path()) && put(PACKAGE)); }
    ~InstallTest() override {
        EXPECT_TRUE(QDir(HomePaths{home.path()}.privateTemp()).isEmpty()) << "the script leaves nothing behind";
    }

    bool put(const QByteArray &content) const {
        QFile file(package);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }
    void play(const QJsonObject &install) { home.setScenario({{u"install"_s, install}}); }
    Run tool(const QString &path, const QStringList &arguments) { return run(standInRoot() + path, arguments); }
    Run install(const QString &sha = sha256(PACKAGE)) {
        const ProgramRun call = buildInstall(package, {.ver = u"1.4.0"_s, .sha = sha});
        return tool(call.executable, call.arguments);
    }
    static InstallOutcome outcome(const Run &run) {
        return installOutcome({.status = run.status, .launched = true, .output = run.error, .launchError = {}});
    }
    QStringList tools() const {
        QStringList names;
        for (const QJsonObject &call : home.toolCalls())
            names.append(call.value("tool"_L1).toString());
        return names;
    }

    const QString package = folder.path() + "/it's a copy of /bin/rm \"$d\" on Ann's.pkg"_L1;
};

} // namespace

TEST_F(InstallTest, GoodPackageIsInstalledFromWhateverPathAndRecorded) {
    EXPECT_EQ(tool(u"/usr/bin/xattr"_s, {u"-d"_s, u"com.apple.quarantine"_s, package}).status, 0);
    const Run first = install();
    EXPECT_EQ(outcome(first), InstallOutcome::Installed) << first.error.toStdString();
    ASSERT_TRUE(put("korvel-package 1.5.0\n"));
    EXPECT_EQ(install(sha256("korvel-package 1.5.0\n")).status, 0);
    const auto installed = home.installedPackages();
    ASSERT_EQ(installed.size(), 2);
    EXPECT_EQ(installed[0].value("version"_L1), QJsonValue(u"1.4.0"_s));
    EXPECT_EQ(installed[0].value("sha256"_L1), QJsonValue(sha256(PACKAGE)));
    EXPECT_EQ(installed[1].value("version"_L1), QJsonValue(u"1.5.0"_s));
    EXPECT_EQ(tools().first(5), (QStringList{u"xattr"_s, u"cp"_s, u"shasum"_s, u"installer"_s, u"osascript"_s}));
    EXPECT_EQ(tool(u"/usr/bin/shasum"_s, {u"-a"_s, u"256"_s, package}).output,
              (sha256("korvel-package 1.5.0\n") + u"  "_s + package + u'\n').toUtf8());
}

TEST_F(InstallTest, UserWhoCancelsHasNothingRun) {
    play({{u"cancel"_s, true}, {u"promptMs"_s, 1}});
    const Run canceled = install();
    EXPECT_EQ(canceled.status, 1);
    EXPECT_EQ(canceled.error, "0:123: execution error: User canceled. (-128)\n");
    play({{u"osascript"_s, QJsonObject{{u"status"_s, 1}, {u"stderr"_s, u"no window server\n"_s}}}});
    EXPECT_EQ(install().error, "no window server\n");
    EXPECT_EQ(tools(), (QStringList{u"osascript"_s, u"osascript"_s}));
}

TEST_F(InstallTest, OnlyThePackageThatWasCheckedIsInstalled) {
    EXPECT_EQ(outcome(install(sha256("another"))), InstallOutcome::Modified);
    play({{u"swapBefore"_s, u"copy"_s}});
    EXPECT_EQ(outcome(install()), InstallOutcome::Modified);
    EXPECT_TRUE(home.installedPackages().isEmpty());

    ASSERT_TRUE(put(PACKAGE));
    play({{u"swapBefore"_s, u"check"_s}});
    EXPECT_EQ(outcome(install()), InstallOutcome::Installed);
    ASSERT_EQ(home.installedPackages().size(), 1);
    EXPECT_EQ(home.installedPackages()[0].value("sha256"_L1), QJsonValue(sha256(PACKAGE)));
    play({});
    EXPECT_EQ(outcome(install()), InstallOutcome::Modified) << "by now another one lies in the cache";
}

TEST_F(InstallTest, FailureEndsWithTheStatusOfWhatFailed) {
    play({{u"installer"_s, QJsonObject{{u"status"_s, 3}, {u"times"_s, 1}}}});
    EXPECT_EQ(install().error, "0:123: execution error: The command exited with a non-zero status. (3)\n");
    ASSERT_TRUE(put("no package"));
    const Run invalid = install(sha256("no package"));
    EXPECT_EQ(outcome(invalid), InstallOutcome::Failed);
    EXPECT_TRUE(invalid.error.contains("invalid") && invalid.error.endsWith(" (1)\n"));
    ASSERT_TRUE(QFile::remove(package));
    EXPECT_TRUE(install().error.endsWith(" (71)\n"));

    const QString temporary = HomePaths{home.path()}.privateTemp();
    ASSERT_TRUE(QDir(temporary).removeRecursively() && QFile(temporary).open(QIODevice::WriteOnly));
    EXPECT_TRUE(install().error.endsWith(" (70)\n"));
    EXPECT_TRUE(home.installedPackages().isEmpty() && QFile::remove(temporary));
}

TEST_F(InstallTest, NothingElseIsRun) {
    ProgramRun call = buildInstall(package, {.ver = u"1.4.0"_s, .sha = sha256(PACKAGE)});
    EXPECT_EQ(tool(call.executable, call.arguments.mid(0, 7)).status, 1) << "no prompt";
    const QString victim = folder.path() + "/victim"_L1;
    for (const QString &script : {u"/bin/rm -f '%1'; /bin/cat %1"_s, u"/private/tmp/../rm; /bin/rm -f '%1'"_s,
                                  u"/bin/rm -f '%1'\"/etc\""_s, u"installer || touch '%1'"_s}) {
        call.arguments[6] = script.arg(victim);
        const Run refused = tool(call.executable, call.arguments);
        EXPECT_TRUE(refused.status == 1 && refused.error.endsWith(" (127)\n")) << qPrintable(script);
    }
    EXPECT_EQ(tools(), QStringList(5, u"osascript"_s));
}

TEST_F(InstallTest, ShutDownEndsAnInstallationUnderWay) {
    play({{u"installer"_s, QJsonObject{{u"delayMs"_s, 1'000'000}}}});
    auto endless = std::async(std::launch::async, [this] { return install(); });
    EXPECT_TRUE(eventually([&] { return tools().contains(u"shasum"_s); }));
    EXPECT_TRUE(home.shutDown());
    EXPECT_NE(endless.get().status, 0);
    EXPECT_TRUE(home.installedPackages().isEmpty());
    QDir(HomePaths{home.path()}.privateTemp()).removeRecursively(); // the script's own clearing up was ended too
}

} // namespace korvel::sim
