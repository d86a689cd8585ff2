#include "exchange/ed25519.h"
#include "publisher/release.h"
#include "support/signing.h"
#include "support/tray_fixture.h"
#include "update/install_script.h"
#include "update/manifest.h"
#include "update/update_install.h"
#include "update/update_notices.h"

#include <QJsonArray>

namespace korvel::test {
namespace {

UpdateInfo signedInfo() {
    UpdateInfo info{.ver = u"2.0"_s, .file = u"Korvel-2.0-cn.pkg"_s, .sha = QString(64, u'a'), .sig = {}};
    info.sig = signature("korvel-update/1\nKorvel-2.0-cn.pkg\n2.0\n" + QByteArray(64, 'a'));
    return info;
}

bool isSigned(const FixedConfig &config, const UpdateInfo &info) {
    const auto proof = updateSignature(config, info);
    return proof && ed25519Valid(*proof);
}

TEST(Manifest, AnEditionTakesItsOwnPackagesOnly) {
    const FixedConfig cn = testConfig(u"cn"_s, {}, PUBLIC_KEY), intl = testConfig(u"intl"_s, {}, PUBLIC_KEY);
    const std::tuple<const char *, bool, bool> cases[] = {
        {R"({"platform":"mac-cn","file":"a-cn.pkg"})", true, false},
        {R"({"platform":"mac-cn","file":"a-CN.PKG"})", true, false},
        {R"({"platform":"mac","file":"a.pkg"})", false, true},
        {R"({"platform":"mac","file":"a-cn.pkg"})", false, false},
        {R"({"platform":"mac-cn","file":"a.pkg"})", false, false},
        {R"({"platform":"mac","file":7})", false, false},
        {R"({"file":"a.pkg"})", false, false},
    };
    for (const auto &[package, forCn, forIntl] : cases) {
        EXPECT_EQ(isOurPackage(cn, object(package)), forCn) << package;
        EXPECT_EQ(isOurPackage(intl, object(package)), forIntl) << package;
    }
    const auto first = packageIn(cn, R"({"packages":[{"platform":"mac","file":"a.pkg","ver":"9"},
        {"platform":"mac-cn","file":"b-cn.pkg","ver":"2","bytes":12.5},{"platform":"mac-cn","file":"c-cn.pkg"}]})");
    ASSERT_TRUE(first);
    EXPECT_EQ(*first, (UpdateInfo{.ver = u"2"_s, .file = u"b-cn.pkg"_s}));
    for (const char *bad : {"", "[]", "{}", R"({"packages":[1]})", R"({"packages":{}})", "<html>"})
        EXPECT_EQ(packageIn(cn, bad), std::nullopt) << bad;
}

TEST(Manifest, VersionsAreComparedNumberByNumber) {
    const std::pair<QString, QString> newer[] = {
        {u"1.10"_s, u"1.9"_s}, {u"10.0"_s, u"9.9.9"_s}, {u"1.2.0.1"_s, u"1.2"_s}};
    for (const auto &[one, other] : newer)
        EXPECT_TRUE(isNewer(one, other) && !isNewer(other, one)) << one.toStdString();
    EXPECT_FALSE(isNewer(u"1.2.0"_s, u"1.2"_s) || isNewer(u"1.2"_s, u"1.2.0"_s) || isNewer(u"x"_s, u"0"_s));
}

TEST(Manifest, OnlySafeNamesVersionsAndHashesAreAccepted) {
    EXPECT_TRUE(isWellFormed(signedInfo()));
    const auto passes = [](QString UpdateInfo::*field, const QString &value) {
        UpdateInfo info = signedInfo();
        info.*field = value;
        return isWellFormed(info);
    };
    for (const QString &file : {u".a.pkg"_s, u"/a.pkg"_s, u"a/b.pkg"_s, u"a b.pkg"_s, u"a.pkg\n"_s, u"a'.pkg"_s,
                                u"a.dmg"_s, u"ä.pkg"_s, QString(81, u'a') + u".pkg"_s, u".pkg"_s})
        EXPECT_FALSE(passes(&UpdateInfo::file, file)) << file.toStdString();
    EXPECT_TRUE(passes(&UpdateInfo::file, QString(80, u'a') + u".pkg"_s));
    for (const QString &ver : {u"2.0.0.0.1"_s, u""_s, u"2."_s, u"2\n"_s, u"v2"_s, u"２"_s})
        EXPECT_FALSE(passes(&UpdateInfo::ver, ver)) << ver.toStdString();
    for (const QString &sha : {QString(64, u'A'), QString(63, u'a'), QString(64, u'g'), QString(64, u'a') + u'\n'})
        EXPECT_FALSE(passes(&UpdateInfo::sha, sha)) << sha.toStdString();
}

TEST(UpdateSignature, BindsNameVersionAndHashOnly) {
    FixedConfig config = testConfig(u"cn"_s, {}, PUBLIC_KEY);
    const QString sig = signedInfo().sig;
    const auto withSize = [&](int size) {
        return QString::fromLatin1(QByteArray::fromBase64(sig.toLatin1()).leftJustified(size, 'x', true).toBase64());
    };
    const std::pair<QString UpdateInfo::*, QString> changes[] = {
        {&UpdateInfo::sha, u'b' + QString(63, u'a')},
        {&UpdateInfo::ver, u"2.1"_s},
        {&UpdateInfo::file, u"Other-cn.pkg"_s},
        {&UpdateInfo::sig, signature("korvel-update/1\n2.0\nKorvel-2.0-cn.pkg\n" + QByteArray(64, 'a'))},
        {&UpdateInfo::sig, QString()},
        {&UpdateInfo::sig, u'!' + sig},
        {&UpdateInfo::sig, QString(sig).remove(u'=')},
        {&UpdateInfo::sig, withSize(63)},
        {&UpdateInfo::sig, withSize(65)},
    };
    for (const auto &[field, value] : changes) {
        UpdateInfo info = signedInfo();
        info.bytes = 99; // checked with the file
        EXPECT_TRUE(isSigned(config, info));
        info.*field = value;
        EXPECT_FALSE(isSigned(config, info)) << value.toStdString();
    }
    for (const QString &key : {u"AAAA"_s, QString(), u"%%%"_s}) {
        config.UPDATE_PUBKEY = key;
        EXPECT_FALSE(isSigned(config, signedInfo())) << key.toStdString();
    }
}

TEST(InstallScript, IsOneLineThatKeepsAnyPathWhole) {
    EXPECT_EQ(
        installScript(u"/it's a/K.pkg"_s, u"ab"_s),
        u"d=$(/usr/bin/mktemp -d /private/tmp/korvel-update.XXXXXX) || exit 70; /bin/cp '/it'\\''s a/K.pkg' "
        u"\"$d/Korvel.pkg\" || { /bin/rm -rf \"$d\"; exit 71; }; [ \"$(/usr/bin/shasum -a 256 \"$d/Korvel.pkg\" | "
        u"/usr/bin/awk '{print $1}')\" = \"ab\" ] || { /bin/rm -rf \"$d\"; exit 72; }; /usr/sbin/installer -pkg "
        u"\"$d/Korvel.pkg\" -target /; rc=$?; /bin/rm -rf \"$d\"; exit $rc"_s);
    const ProgramRun run = buildInstall(u"/p.pkg"_s, signedInfo());
    EXPECT_EQ(run.executable, u"/usr/bin/osascript"_s);
    EXPECT_EQ(run.arguments.mid(6),
              (QStringList{installScript(u"/p.pkg"_s, QString(64, u'a')), u"Korvel wants to install update 2.0."_s}));
    EXPECT_EQ(run.timeout, std::nullopt); // a person types a password
    EXPECT_EQ(run.surroundings, ProgramRun::Surroundings::Own);
}

TEST(InstallScript, ItsOutcomeIsReadFromStatusAndErrorText) {
    const std::tuple<int, const char *, InstallOutcome> cases[] = {
        {0, "warning (72)", InstallOutcome::Installed},
        {1, "0:1: execution error: User canceled. (-128)\n", InstallOutcome::Cancelled},
        {1, "execution error: abgebrochen (-128)", InstallOutcome::Cancelled},
        {1, "execution error: The command exited with a non-zero status. (72)\n", InstallOutcome::Modified},
        {1, "(72) and then (1)", InstallOutcome::Failed},
        {1, "status 72", InstallOutcome::Failed},
        {-1, "", InstallOutcome::Failed},
    };
    for (const auto &[status, error, outcome] : cases)
        EXPECT_EQ(installOutcome(exited(status, error)), outcome) << error;
}

TEST(Download, IsBoundedByTheManifestAndFourGibibytes) {
    for (const auto &[bytes, room] :
         {std::pair<qint64, qint64>(0, 4ll << 30), {-1, 4ll << 30}, {12, 12}, {(4ll << 30) + 1, 4ll << 30}}) {
        UpdateInfo info = signedInfo();
        info.bytes = bytes;
        const ServerRequest request = buildDownload(u"own.example:443"_s, info).value();
        EXPECT_EQ(request.maxBytes, room) << bytes;
        EXPECT_EQ(request.timeout, 6h);
        EXPECT_EQ(request.slowTimeout, 60s);
        EXPECT_GT(request.redirects, 0);
    }
}

TEST(Download, ARefusalIsWordedByItsStatusOrTheServersShortSentence) {
    const QString busy = u"The server is busy. Try again later or download it from the website."_s;
    const QString failed = u"The download failed. Try again later."_s;
    const std::tuple<int, QByteArray, QString> cases[] = {
        {503, "anything", busy},
        {429, "", busy},
        {404, " No such package.\n", u"No such package."_s},
        {404, "", failed},
        {404, "<html>", failed},
        {404, "{\"error\":1}", failed},
        {404, "Gone \xff", failed},
        {404, QByteArray(81, 'x'), failed},
    };
    for (const auto &[status, body, text] : cases)
        EXPECT_EQ(downloadRefusedNotice(status, body, {}).text, text) << body.constData();
}

const QByteArray PACKAGE = "korvel-package 2.0\nfiller", OTHER = "korvel-package 6.6\nfiller";
const QString MODIFIED = u"The installer was incomplete or modified and has been deleted. Try again later."_s;
const QString CANCELLED = u"Canceled. To install, choose Update to 2.0 in the menu."_s;

/// A tray whose server has a newer package.
struct UpdateTest : TrayFixture {
    UpdateInfo info;
    QString cache; ///< Where the package is kept.

    void SetUp() override {
        home.fixed = testConfig(u"cn"_s, home.home(), PUBLIC_KEY);
        offer(u"2.0"_s);
        installAndBind();
        http.respond = [this](const HttpRequest &r) {
            return json(r.url.endsWith(u"/v1/dl/manifest") ? manifest() : ONLINE);
        };
        launch();
        forget();
    }
    void offer(const QString &ver) {
        const QString built = home.home() + u"/Korvel-cn.pkg"_s;
        home.write(built, PACKAGE);
        info = signedPackage(*SigningKey::fromSeed(SECRET_KEY), ver, built).value();
        cache = home.paths.updateDir + u'/' + info.file;
    }
    QByteArray manifest() const {
        return QJsonDocument(QJsonObject{{u"packages"_s, QJsonArray{entryOf(info)}}}).toJson();
    }
    const UpdateState &update() const { return tray->currentState().update; }
    void check() { item.press(Action::CheckUpdate); }
    void install() { choose(Action::InstallUpdate); }
    /// Checks, then starts the installation; the download stays in flight.
    void startInstall() {
        check();
        http.respond = nullptr;
        install();
    }
    void complete(const QByteArray &content, Result<HttpReply> reply = HttpReply{200, {}}) {
        home.write(http.downloadTo, content);
        TrayFixture::complete(u"/dl/"_s + info.file, std::move(reply));
    }
    qsizetype runsOf(const QString &program) const {
        return std::ranges::count(programs.runs, program, &ProgramRun::executable);
    }
    void expectRefused(const QString &notice) {
        scheduler.runDue();
        EXPECT_EQ(notices.last(), notice);
        EXPECT_TRUE(notices.shown.back().error);
        EXPECT_FALSE(update().updateBusy || update().updatePct);
        EXPECT_TRUE(update().updateAvail);
        EXPECT_EQ(runsOf(u"/usr/bin/osascript"_s), 0);
        EXPECT_FALSE(QFile::exists(cache));
    }
};

TEST_F(UpdateTest, ANewVersionIsAnnouncedOnceAndStaysInTheMenu) {
    const QString available = u"⬆ Korvel 2.0 is available. Choose Update to 2.0 in the menu."_s;
    scheduler.advance(20s);
    EXPECT_EQ(notices.take(), available);
    EXPECT_EQ(item.entry(Action::InstallUpdate).title, u"⬆ Update to 2.0…"_s);
    scheduler.advance(6h);
    EXPECT_EQ(notices.take(), u""_s);
    check(); // the user gets a result each time
    EXPECT_EQ(notices.take(), available);
    EXPECT_EQ(http.last.url, u"https://cn.example:443/v1/dl/manifest"_s);
    EXPECT_EQ(http.last.timeout, 15s);
}

TEST_F(UpdateTest, AFailureIsReportedOnlyAfterACheckByTheUser) {
    const QString couldNot = u"Couldn't check for updates. Try again later."_s;
    const std::pair<Result<HttpReply>, QString> cases[] = {
        {HttpReply{404, manifest()}, couldNot},
        {HttpReply{200, "<html>"}, couldNot},
        {HttpReply{200, R"({"packages":[]})"}, couldNot},
        {Error{ErrorKind::TimedOut, {}}, u"The server timed out. Try again later."_s}};
    for (const auto &[reply, notice] : cases) {
        http.respond = [&reply = reply](const HttpRequest &) { return reply; };
        check();
        EXPECT_EQ(update().updateCheckedAt, scheduler.now());
        scheduler.advance(61min);
        item.events.menuOpening(); // the automatic check
        EXPECT_EQ(notices.take(), notice);
    }
    EXPECT_FALSE(update().updateAvail);
}

TEST_F(UpdateTest, OnlyANewerAndSignedVersionIsOffered) {
    offer(u"1.2.3"_s);
    check();
    EXPECT_EQ(notices.last(), u"✓ Korvel is up to date (1.2.3)."_s);
    for (const QString &sig : {signature("other"), u"no base64"_s, QString()}) {
        offer(u"2.0"_s);
        info.sig = sig;
        if (sig.isEmpty()) { // signed, but no safe name
            info.file = u"../Korvel-cn.pkg"_s;
            info.sig = signature(signedMessage(u"korvel-update/1"_s, info));
        }
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
    EXPECT_TRUE(http.downloadTo.startsWith(home.paths.updateDir + u'/'));
    EXPECT_NE(http.downloadTo, cache);
    EXPECT_EQ(QFileInfo(home.paths.updateDir).permissions() & (QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());
    http.onProgress(500, 1000);
    EXPECT_EQ(item.entry(Action::InstallUpdate).title, u"Downloading 2.0… 50%"_s);
    const int changes = item.menuChanges;
    http.onProgress(504, 1000);
    EXPECT_EQ(item.menuChanges, changes);
    item.press(Action::InstallUpdate); // once is enough
    scheduler.holdsBackground = true;
    complete(PACKAGE);
    EXPECT_EQ(item.entry(Action::InstallUpdate).title, u"Installing 2.0…"_s);
    EXPECT_FALSE(item.entry(Action::InstallUpdate).enabled);
    scheduler.releaseBackground();
    EXPECT_EQ(programs.runs.front().executable, u"/usr/bin/xattr"_s);
    EXPECT_EQ(programs.runs.front().arguments, (QStringList{u"-d"_s, u"com.apple.quarantine"_s, cache}));
    EXPECT_EQ(programs.runs.front().timeout, 10s);
    EXPECT_EQ(runsOf(u"/usr/bin/osascript"_s), 1);
    EXPECT_EQ(notices.last(), u"✓ Updated to 2.0"_s);
    EXPECT_FALSE(update().updateAvail || update().updateBusy || update().updatePct);
    EXPECT_TRUE(http.last.url.endsWith(u"/health"));       // a new poll
    for (const QString &notNewer : {u"1.9"_s, u"2.0"_s}) { // than the installed version, which has not started yet
        offer(notNewer);
        agentResponds(manifest());
        check();
        EXPECT_FALSE(update().updateAvail) << notNewer.toStdString();
    }
}

TEST_F(UpdateTest, AFailedDownloadLeavesNothingAndCanBeTriedAgain) {
    const std::tuple<QByteArray, Result<HttpReply>, QString> cases[] = {
        {"half", Error{ErrorKind::Interrupted, {}}, u"This Mac is offline. Connect to the internet and try again."_s},
        {"", HttpReply{404, "Gone for good."}, u"Gone for good."_s},
        {PACKAGE + "x", HttpReply{200, {}}, MODIFIED},
        {PACKAGE.chopped(1), HttpReply{200, {}}, MODIFIED},
        {OTHER, HttpReply{200, {}}, MODIFIED},
        {PACKAGE, Error{ErrorKind::TooLarge, {}}, MODIFIED},
        {"ha", Error{ErrorKind::NotSaved, {}}, u"Couldn't save the installer. Check your disk space."_s},
    };
    startInstall();
    for (const auto &[content, reply, notice] : cases) {
        complete(content, reply);
        expectRefused(notice);
        EXPECT_TRUE(QDir(home.paths.updateDir).isEmpty());
        install();
        EXPECT_EQ(update().updatePct, 0);
    }
    http.verdict = [](const SignatureProof &) { return Error{ErrorKind::Unreachable, {}}; };
    complete(PACKAGE);
    EXPECT_EQ(notices.last(), u"Couldn't check the installer. Try again later."_s);
    EXPECT_TRUE(QFile::exists(cache)); // an unchecked package is kept
    http.verdict = ed25519Valid;
    install();
    EXPECT_EQ(notices.last(), u"✓ Updated to 2.0"_s);
}

TEST_F(UpdateTest, ACachedPackageIsUsedOnlyWhenItIsTheRightOne) {
    check();
    home.write(cache, OTHER);
    home.write(cache + u".part"_s, "left by a crash");
    home.write(home.paths.updateDir + u"/Korvel-1.9-cn.pkg"_s, "never installed");
    install();
    expectRefused(MODIFIED);
    EXPECT_TRUE(QDir(home.paths.updateDir).isEmpty());
    home.write(cache, PACKAGE);
    install();
    EXPECT_EQ(notices.last(), u"✓ Updated to 2.0"_s);
    EXPECT_TRUE(http.downloadTo.isEmpty());
}

TEST_F(UpdateTest, ACacheFolderThatIsALinkIsRefusedAndItsTargetUnchanged) {
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

TEST_F(UpdateTest, EachOutcomeOfTheInstallerIsReportedAndTheUpdateStaysOffered) {
    const std::tuple<const char *, QString, bool, bool> cases[] = {
        {"User canceled. (-128)", CANCELLED, false, true},
        {"x (72)", u"The installer was modified before installation, so installation stopped."_s, false, false},
        {"x (1)", u"The installer is open. Follow the steps to finish."_s, true, true}};
    check();
    home.write(cache, PACKAGE);
    scheduler.holdsBackground = true; // the administrator prompt
    install();
    item.choose(Action::CancelInstall);
    scheduler.releaseBackground();
    EXPECT_EQ(notices.last(), CANCELLED);
    EXPECT_EQ(item.entry(Action::CancelInstall), MenuEntry());
    for (const auto &[error, notice, opensInstaller, keepsPackage] : cases) {
        home.write(cache, PACKAGE);
        programs.result = exited(1, error);
        install();
        EXPECT_EQ(notices.last(), notice);
        EXPECT_FALSE(update().updateBusy);
        EXPECT_TRUE(update().updateAvail);
        EXPECT_EQ(!desktop.opened.isEmpty(), opensInstaller);
        EXPECT_EQ(QFile::exists(cache), keepsPackage);
    }
    // A package that was replaced while the prompt was open is not opened either.
    programs.behave = [this](const ProgramRun &run) {
        if (run.executable == u"/usr/bin/osascript")
            home.write(cache, "other");
        return programs.result;
    };
    desktop.opened.clear();
    install();
    EXPECT_TRUE(desktop.opened.isEmpty());
}

} // namespace
} // namespace korvel::test
