#include "exchange/ed25519.h"
#include "support/signing.h"
#include "support/tray_fixture.h"
#include "update/signature.h"

#include <QCryptographicHash>
#include <QJsonArray>

namespace korvel::test {
namespace {

const QByteArray PACKAGE = "korvel-package 2.0\nfiller";

/// A tray whose server has a newer package.
struct UpdateTest : TrayFixture {
    UpdateInfo info;
    QByteArray manifest;
    QString cache; ///< Where the package is kept.

    void SetUp() override {
        Deployment deployment = testDeployment();
        deployment.updatePubkey = PUBLIC_KEY;
        LaunchEnvironment environment;
        environment.home = home.home();
        home.fixed = makeFixedConfig(deployment, environment);
        offer(u"2.0"_s);
        installAndBind();
        http.verdict = ed25519Valid;
        http.answer = [this](const HttpRequest &r) {
            return r.url.endsWith(u"/v1/dl/manifest") ? json(manifest) : json(ONLINE);
        };
        launch();
    }
    void offer(const QString &ver) {
        info = {.ver = ver, .file = u"Korvel-cn.pkg"_s, .sha = {}, .sig = {}, .bytes = PACKAGE.size()};
        info.sha = QString::fromLatin1(QCryptographicHash::hash(PACKAGE, QCryptographicHash::Sha256).toHex());
        info.sig = signature(signedMessage(u"korvel-update/1"_s, info));
        cache = home.paths.updateDir + u'/' + info.file;
        writeManifest();
    }
    void writeManifest() {
        const QJsonObject package{{u"platform"_s, u"mac-cn"_s}, {u"file"_s, info.file}, {u"ver"_s, info.ver},
                                  {u"sha256"_s, info.sha},      {u"sig"_s, info.sig},   {u"bytes"_s, info.bytes}};
        manifest = QJsonDocument(QJsonObject{{u"packages"_s, QJsonArray{package}}}).toJson();
    }
    const UpdateState &update() const { return tray->currentState().update; }
    void check() { item.press(Action::CheckUpdate); }
    /// Checks, then starts the installation; the download waits for an answer.
    void startInstall() {
        check();
        http.answer = nullptr;
        item.choose(Action::InstallUpdate);
        scheduler.settle();
    }
    /// Answers the download that is open.
    void delivers(const QByteArray &content, Result<HttpReply> reply = HttpReply{200, {}}) {
        home.write(http.downloadTo, content);
        for (size_t i = 0; i < http.open.size(); ++i)
            if (http.open[i].request.url.contains(u"/dl/"))
                return http.reply(i, std::move(reply));
        ADD_FAILURE() << "no download";
    }
    int runsOf(const QString &program) const {
        return static_cast<int>(std::count_if(programs.runs.begin(), programs.runs.end(),
                                              [&](const ProgramRun &run) { return run.executable == program; }));
    }
    void expectRefused(const QString &notice) {
        scheduler.settle();
        EXPECT_EQ(notices.last(), notice);
        EXPECT_TRUE(notices.shown.back().error);
        EXPECT_FALSE(update().updateBusy || update().updatePct);
        EXPECT_TRUE(update().updateAvail);
        EXPECT_EQ(runsOf(u"/usr/bin/osascript"_s), 0);
        EXPECT_FALSE(QFile::exists(cache));
    }
};

TEST_F(UpdateTest, ANewVersionIsAnnouncedOnceAndStaysInTheMenu) {
    notices.shown.clear();
    scheduler.advance(20s);
    EXPECT_EQ(notices.last(), u"⬆ Korvel 2.0 is available. Choose Update to 2.0 in the menu."_s);
    EXPECT_EQ(item.entry(Action::InstallUpdate).title, u"⬆ Update to 2.0…"_s);
    notices.shown.clear();
    scheduler.advance(6h);
    EXPECT_TRUE(notices.shown.empty());
    check();
    EXPECT_EQ(notices.shown.size(), 1u); // asked for, told again
    EXPECT_EQ(http.last.url, u"https://cn.example:443/v1/dl/manifest"_s);
    EXPECT_EQ(http.last.timeout, 15s);
}

TEST_F(UpdateTest, OnlyACheckThatTheUserAskedForSpeaksOfFailures) {
    const QString couldNot = u"Couldn't check for updates. Try again later."_s;
    const struct {
        Result<HttpReply> reply;
        QString notice;
    } cases[] = {{HttpReply{404, manifest}, couldNot},
                 {HttpReply{200, "<html>"}, couldNot},
                 {HttpReply{200, R"({"packages":[]})"}, couldNot},
                 {Error{ErrorKind::TimedOut, {}}, u"The server timed out. Try again later."_s}};
    for (const auto &c : cases) {
        http.answer = [&c](const HttpRequest &) { return c.reply; };
        check();
        EXPECT_EQ(notices.last(), c.notice);
        EXPECT_TRUE(notices.shown.back().error);
        EXPECT_EQ(update().updateCheckedAt, scheduler.now());
        notices.shown.clear();
        scheduler.advance(61min);
        item.events.menuOpening(); // the automatic check
        EXPECT_TRUE(notices.shown.empty());
    }
    EXPECT_FALSE(update().updateAvail);
}

TEST_F(UpdateTest, WhatIsNotNewerOrNotSignedIsNotOffered) {
    offer(u"1.2.3"_s);
    check();
    EXPECT_EQ(notices.last(), u"✓ Korvel is up to date (1.2.3)."_s);
    const std::function<void()> spoils[] = {
        [this] { info.sha[0] = info.sha[0] == u'0' ? u'1' : u'0'; },
        [this] { info.sig = signature("korvel-update/1\nother"); },
        [this] { // signed, but no name for a path
            info.file = u"../Korvel-cn.pkg"_s;
            info.sig = signature(signedMessage(u"korvel-update/1"_s, info));
        },
    };
    for (const auto &spoil : spoils) {
        offer(u"2.0"_s);
        spoil();
        writeManifest();
        check();
        EXPECT_EQ(notices.last(), u"Version 2.0 didn't pass the security check. Download it from the website."_s);
        notices.click();
        EXPECT_EQ(desktop.opened.last(), home.fixed.SITE_URL);
        EXPECT_FALSE(update().updateAvail);
    }
}

TEST_F(UpdateTest, ADownloadShowsItsPercentAndIsInstalled) {
    startInstall();
    EXPECT_EQ(notices.last(), u"↓ Downloading 2.0 (0.0 MB). Progress appears in the menu."_s);
    EXPECT_EQ(http.last.url, u"https://cn.example:443/dl/Korvel-cn.pkg"_s);
    EXPECT_EQ(http.last.maxBytes, PACKAGE.size());
    EXPECT_TRUE(http.downloadTo.startsWith(home.paths.updateDir + u'/'));
    EXPECT_NE(http.downloadTo, cache);
    EXPECT_EQ(QFileInfo(home.paths.updateDir).permissions() & (QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());
    http.onProgress(500, 1000);
    EXPECT_EQ(item.entry(Action::InstallUpdate).title, u"Downloading 2.0… 50%"_s);
    EXPECT_FALSE(item.entry(Action::InstallUpdate).enabled);
    const int redraws = item.menuChanges;
    http.onProgress(504, 1000);
    EXPECT_EQ(item.menuChanges, redraws);
    item.press(Action::InstallUpdate); // once is enough
    scheduler.holdBackground(true);
    delivers(PACKAGE);
    EXPECT_EQ(item.entry(Action::InstallUpdate).title, u"Installing 2.0…"_s);
    scheduler.holdBackground(false);
    scheduler.settle();
    EXPECT_EQ(runsOf(u"/usr/bin/xattr"_s), 1);
    EXPECT_EQ(programs.runs.front().arguments, (QStringList{u"-d"_s, u"com.apple.quarantine"_s, cache}));
    EXPECT_EQ(programs.runs.front().timeout, 10s);
    EXPECT_EQ(runsOf(u"/usr/bin/osascript"_s), 1);
    EXPECT_EQ(notices.last(), u"✓ Updated to 2.0"_s);
    EXPECT_FALSE(update().updateAvail || update().updateBusy || update().updatePct);
    EXPECT_TRUE(http.last.url.endsWith(u"/health")); // a fresh poll
    http.answer = [this](const HttpRequest &) { return json(manifest); };
    for (const QString &noNewer : {u"1.9"_s, u"2.0"_s}) { // than what is installed by now, though than this program
        offer(noNewer);
        check();
        EXPECT_FALSE(update().updateAvail) << noNewer.toStdString();
    }
}

TEST_F(UpdateTest, ADownloadThatFailsLeavesNothingToTrustAndCanBeTriedAgain) {
    const QString modified = u"The installer was incomplete or modified and has been deleted. Try again later."_s;
    const struct {
        QByteArray content;
        Result<HttpReply> reply;
        QString notice;
    } cases[] = {
        {"half", Error{ErrorKind::Interrupted, {}}, u"This Mac is offline. Connect to the internet and try again."_s},
        {"", HttpReply{503, "busy"}, u"The server is busy. Try again later or download it from the website."_s},
        {"", HttpReply{404, "Gone for good."}, u"Gone for good."_s},
        {PACKAGE + "x", HttpReply{200, {}}, modified},
        {PACKAGE.chopped(1), HttpReply{200, {}}, modified},
        {QByteArray(PACKAGE).replace("2.0", "6.6"), HttpReply{200, {}}, modified},
        {PACKAGE, Error{ErrorKind::TooLarge, {}}, modified},
        {"ha", Error{ErrorKind::NotSaved, {}}, u"Couldn't save the installer. Check your disk space."_s},
    };
    startInstall();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.notice.toStdString());
        delivers(c.content, c.reply);
        expectRefused(c.notice);
        EXPECT_TRUE(QDir(home.paths.updateDir).isEmpty());
        item.choose(Action::InstallUpdate);
        scheduler.settle();
        EXPECT_EQ(update().updatePct, 0);
    }
    delivers(PACKAGE);
    scheduler.settle();
    EXPECT_EQ(notices.last(), u"✓ Updated to 2.0"_s);
}

TEST_F(UpdateTest, ACachedPackageIsUsedWhenItIsTheRightOneOnly) {
    check();
    home.write(cache, QByteArray(PACKAGE).replace("2.0", "6.6"));
    home.write(cache + u".part"_s, "left by a crash");
    home.write(home.paths.updateDir + u"/Korvel-1.9-cn.pkg"_s, "never installed");
    item.choose(Action::InstallUpdate);
    expectRefused(u"The installer was incomplete or modified and has been deleted. Try again later."_s);
    EXPECT_TRUE(QDir(home.paths.updateDir).isEmpty());
    home.write(cache, PACKAGE);
    item.choose(Action::InstallUpdate);
    scheduler.settle();
    EXPECT_EQ(notices.last(), u"✓ Updated to 2.0"_s);
    EXPECT_TRUE(http.downloadTo.isEmpty()); // nothing was downloaded
}

TEST_F(UpdateTest, ACacheFolderThatIsALinkIsRefusedAndNothingBehindItIsTouched) {
    const QString behind = home.home() + u"/behind"_s;
    home.write(behind + u"/mine"_s, "mine");
    QFile::setPermissions(behind, QFile::Permissions(0x7755));
    const auto permissions = QFileInfo(behind).permissions();
    QDir().mkpath(QFileInfo(home.paths.updateDir).path());
    ASSERT_TRUE(QFile::link(behind, home.paths.updateDir));
    startInstall();
    EXPECT_EQ(notices.last(), u"Couldn't save the installer. Check your disk space."_s);
    EXPECT_EQ(QDir(behind).entryList(QDir::Files), QStringList{u"mine"_s});
    EXPECT_EQ(QFileInfo(behind).permissions(), permissions);
    EXPECT_FALSE(update().updateBusy);
}

TEST_F(UpdateTest, TheAdministratorsPromptCanBeGivenUpFromTheMenu) {
    startInstall();
    EXPECT_EQ(item.entry(Action::CancelInstall), MenuEntry());
    scheduler.holdBackground(true); // the prompt
    delivers(PACKAGE);
    item.choose(Action::CancelInstall);
    scheduler.holdBackground(false);
    EXPECT_EQ(notices.last(), u"Canceled. To install, choose Update to 2.0 in the menu."_s);
    EXPECT_EQ(item.entry(Action::CancelInstall), MenuEntry());
    item.choose(Action::InstallUpdate); // the package is still there
    scheduler.settle();
    EXPECT_EQ(notices.last(), u"✓ Updated to 2.0"_s);
}

TEST_F(UpdateTest, APackageThatCannotBeLookedAtIsKept) {
    startInstall();
    http.verdict = [](const SignatureProof &) { return Error{ErrorKind::Unreachable, {}}; }; // no thread, say
    delivers(PACKAGE);
    EXPECT_EQ(notices.last(), u"Couldn't check the installer. Try again later."_s);
    EXPECT_TRUE(QFile::exists(cache));
    EXPECT_FALSE(update().updateBusy);
}

TEST_F(UpdateTest, EachOutcomeOfTheInstallerIsToldAndTheUpdateStaysOffered) {
    const struct {
        const char *error;
        QString notice;
        bool opensInstaller;
    } cases[] = {{"User canceled. (-128)", u"Canceled. To install, choose Update to 2.0 in the menu."_s, false},
                 {"x (72)", u"The installer was modified before installation, so installation stopped."_s, false},
                 {"x (1)", u"The installer is open. Follow the steps to finish."_s, true}};
    check();
    for (const auto &c : cases) {
        home.write(cache, PACKAGE);
        programs.result = {.status = 1, .launched = true, .output = c.error, .launchError = {}};
        desktop.opened.clear();
        item.choose(Action::InstallUpdate);
        scheduler.settle();
        EXPECT_EQ(notices.last(), c.notice);
        EXPECT_FALSE(update().updateBusy);
        EXPECT_TRUE(update().updateAvail);
        EXPECT_EQ(!desktop.opened.isEmpty(), c.opensInstaller);
        EXPECT_EQ(QFile::exists(cache), !notices.last().contains(u"modified"));
    }
    // A package that was exchanged while the password was asked for is not handed on either.
    programs.answer = [this](const ProgramRun &run) {
        if (run.executable == u"/usr/bin/osascript")
            home.write(cache, "other");
        return programs.result;
    };
    desktop.opened.clear();
    item.choose(Action::InstallUpdate);
    scheduler.settle();
    EXPECT_TRUE(desktop.opened.isEmpty());
}

} // namespace
} // namespace korvel::test
