#include "exchange/ed25519.h"
#include "exchange/sha256.h"
#include "support/fakes.h"
#include "support/signing.h"
#include "update/install_script.h"
#include "update/manifest.h"
#include "update/signature.h"
#include "update/update_install.h"
#include "update/update_notices.h"

#include <sys/stat.h>

namespace korvel::test {
namespace {

FixedConfig configOf(const QString &edition) {
    Deployment deployment = testDeployment(edition);
    deployment.updatePubkey = PUBLIC_KEY;
    return makeFixedConfig(deployment, {});
}

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
    const FixedConfig cn = configOf(u"cn"_s), intl = configOf(u"intl"_s);
    const struct {
        const char *package;
        bool forCn, forIntl;
    } cases[] = {
        {R"({"platform":"mac-cn","file":"a-cn.pkg"})", true, false},
        {R"({"platform":"mac-cn","file":"a-CN.PKG"})", true, false},
        {R"({"platform":"mac","file":"a.pkg"})", false, true},
        {R"({"platform":"mac","file":"a-cn.pkg"})", false, false},
        {R"({"platform":"mac-cn","file":"a.pkg"})", false, false},
        {R"({"platform":"mac","file":7})", false, false},
        {R"({"file":"a.pkg"})", false, false},
    };
    for (const auto &c : cases) {
        const QJsonObject package = object(c.package);
        EXPECT_EQ(isOurPackage(cn, package), c.forCn) << c.package;
        EXPECT_EQ(isOurPackage(intl, package), c.forIntl) << c.package;
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

TEST(Manifest, OnlyHarmlessNamesVersionsAndHashesPass) {
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

TEST(UpdateSignature, BindsNameVersionAndHashAndNothingElse) {
    const FixedConfig config = configOf(u"cn"_s);
    UpdateInfo info = signedInfo();
    EXPECT_TRUE(isSigned(config, info));
    info.bytes = 99;
    EXPECT_TRUE(isSigned(config, info)); // its size is checked with the file
    const QString sig = info.sig;
    const auto sized = [&](int size) {
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
        {&UpdateInfo::sig, sized(63)},
        {&UpdateInfo::sig, sized(65)},
    };
    for (const auto &[field, value] : changes) {
        UpdateInfo other = signedInfo();
        other.*field = value;
        EXPECT_FALSE(isSigned(config, other)) << value.toStdString();
    }
    FixedConfig broken = config;
    for (const QString &key : {u"short"_s, u"%%%"_s, u"AAAA"_s, QString()}) {
        broken.UPDATE_PUBKEY = key;
        EXPECT_FALSE(isSigned(broken, signedInfo()));
    }
}

TEST(Sha256, AgreesWithThePublishedVectors) {
    const TestHome home;
    const QString path = home.home() + u"/file"_s;
    const std::pair<QByteArray, QString> vectors[] = {
        {"", u"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"_s},
        {"abc", u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         u"248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"_s},
        {QByteArray(1000000, 'a'), u"cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"_s}};
    for (const auto &[content, digest] : vectors) {
        home.write(path, content);
        EXPECT_EQ(sha256File(path), digest);
    }
    EXPECT_EQ(sha256File(home.home() + u"/none"_s), std::nullopt);
    EXPECT_EQ(sha256File(home.home()), std::nullopt);
    const QString pipe = home.home() + u"/pipe"_s;
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(sha256File(pipe), std::nullopt); // and does not wait for a writer
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
    const auto outcome = [](int status, const char *error) {
        return installOutcome({.status = status, .launched = true, .output = error, .launchError = {}});
    };
    EXPECT_EQ(outcome(0, "warning (72)"), InstallOutcome::Installed);
    EXPECT_EQ(outcome(1, "0:1: execution error: User canceled. (-128)\n"), InstallOutcome::Cancelled);
    EXPECT_EQ(outcome(1, "execution error: abgebrochen (-128)"), InstallOutcome::Cancelled);
    EXPECT_EQ(outcome(1, "0:1: execution error: The command exited with a non-zero status. (72)\n"),
              InstallOutcome::Modified);
    EXPECT_EQ(outcome(1, "(72) and then (1)"), InstallOutcome::Failed);
    EXPECT_EQ(outcome(1, "status 72"), InstallOutcome::Failed);
    EXPECT_EQ(outcome(-1, ""), InstallOutcome::Failed);
}

TEST(Download, HasRoomForWhatTheManifestSaysAndNoMoreThanFourGibibytes) {
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
    EXPECT_EQ(downloadRefusedNotice(503, "anything", {}).text, busy);
    EXPECT_EQ(downloadRefusedNotice(429, "", {}).text, busy);
    EXPECT_EQ(downloadRefusedNotice(404, " No such package.\n", {}).text, u"No such package."_s);
    for (const QByteArray &body : {QByteArray(), QByteArray("{\"error\":1}"), QByteArray("<html>"), QByteArray(81, 'x'),
                                   QByteArray("Gone \xff")})
        EXPECT_EQ(downloadRefusedNotice(404, body, {}).text, failed) << body.constData();
}

} // namespace
} // namespace korvel::test
