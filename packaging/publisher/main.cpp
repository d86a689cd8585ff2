// korvel-publish: makes the publisher's key, signs packages into a manifest, and looks at one as a tray does.

#include "publisher/manifest_file.h"
#include "publisher/release.h"
#include "publisher/signing_key.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr int REFUSED = 1;
constexpr int USAGE = 2;

const char HELP[] = R"(Usage: korvel-publish COMMAND ... (COMMAND --help lists its options)

  make-key FILE                              make the publisher's key, print its public half
  sign --key FILE --version V --manifest M PACKAGE...
                                             sign packages and put them into a manifest
  verify --public-key K --edition E M [PACKAGE]
                                             say what a tray makes of a manifest

Exit status: 0 done, or the tray would offer the package; 1 not; 2 the command line is wrong.
)";

void say(const QString &line) { std::puts(qUtf8Printable(line)); }

int complain(int status, const QString &text) {
    std::fprintf(stderr, "korvel-publish: %s\n", qUtf8Printable(text));
    return status;
}

/// Reads the arguments of a command; positional ones have to number from `fewest` to `most`.
bool parse(QCommandLineParser &parser, const QStringList &arguments, qsizetype fewest, qsizetype most) {
    parser.addHelpOption();
    parser.process(arguments);
    const qsizetype count = parser.positionalArguments().size();
    return count >= fewest && count <= most;
}

int makeKey(const QStringList &arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Makes an Ed25519 key. The private half goes to a new file that only you can "
                                     "read; the public half is printed, for KORVEL_UPDATE_PUBKEY."_s);
    parser.addPositionalArgument(u"FILE"_s, u"where the private key goes; must not exist"_s);
    if (!parse(parser, arguments, 1, 1))
        return complain(USAGE, u"make-key takes one FILE"_s);
    const QString path = parser.positionalArguments().first();
    const auto key = SigningKey::generate();
    if (!key)
        return complain(REFUSED, u"no key could be made"_s);
    if (const QString failure = key->writeNew(path); !failure.isEmpty())
        return complain(REFUSED, path + u": "_s + failure);
    say(key->publicKey());
    return 0;
}

int signPackages(const SigningKey &key, const QString &version, const QString &manifestPath,
                 const QStringList &packages) {
    Result<QJsonObject> manifest = manifestToExtend(manifestPath);
    if (!manifest)
        return complain(REFUSED, manifestPath + u": "_s + manifest.error().detail);
    QStringList report;
    for (const QString &path : packages) {
        const Result<UpdateInfo> info = signedPackage(key, version, path);
        if (!info)
            return complain(REFUSED, path + u": "_s + info.error().detail);
        manifest = withPackage(manifest.value(), info.value(), key.publicKey());
        if (!manifest)
            return complain(REFUSED, path + u": "_s + manifest.error().detail);
        report +=
            u"%1 %2 %3 %4 bytes"_s.arg(info.value().sha, editionOf(path), info.value().file).arg(info.value().bytes);
    }
    if (const QString failure = replaceManifest(manifestPath, manifest.value()); !failure.isEmpty())
        return complain(REFUSED, manifestPath + u": "_s + failure);
    for (const QString &line : report)
        say(line);
    say(u"signed for the public key "_s + key.publicKey());
    return 0;
}

int sign(const QStringList &arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Signs packages of one version and puts each into the manifest, in place of the older one of its edition: cn "
        "for a name that ends in \"-cn.pkg\", intl for any other. All of them or none."_s);
    parser.addOptions({{u"key"_s, u"the private key, as make-key wrote it"_s, u"FILE"_s},
                       {u"version"_s, u"one to four numbers with dots between them"_s, u"V"_s},
                       {u"manifest"_s, u"made if it does not exist"_s, u"M"_s}});
    parser.addPositionalArgument(u"PACKAGE"_s, u"installer packages of this version"_s, u"PACKAGE..."_s);
    const bool enough = parse(parser, arguments, 1, arguments.size());
    if (!enough || !parser.isSet(u"key"_s) || !parser.isSet(u"version"_s) || !parser.isSet(u"manifest"_s))
        return complain(USAGE, u"sign takes --key, --version, --manifest and at least one PACKAGE"_s);
    const Result<SigningKey> key = SigningKey::read(parser.value(u"key"_s));
    if (!key)
        return complain(REFUSED, parser.value(u"key"_s) + u": "_s + key.error().detail);
    return signPackages(key.value(), parser.value(u"version"_s), parser.value(u"manifest"_s),
                        parser.positionalArguments());
}

int verifyFor(const FixedConfig &tray, const QString &manifestPath, const QString &packagePath) {
    const Result<QByteArray> manifest = readManifest(manifestPath);
    if (!manifest)
        return complain(REFUSED, manifestPath + u": "_s + manifest.error().detail);
    const Verdict verdict = judge(tray, manifest.value());
    if (verdict.package)
        say(u"version %1, %2, %3 bytes"_s.arg(verdict.package->ver, verdict.package->file).arg(verdict.package->bytes));
    if (!verdict.refusal.isEmpty())
        return complain(REFUSED, u"not offered: "_s + verdict.refusal);
    const QString refusal = packagePath.isEmpty() ? QString() : fileRefusal(*verdict.package, packagePath);
    if (!refusal.isEmpty())
        return complain(REFUSED, u"not installed: %1: %2"_s.arg(packagePath, refusal));
    say(packagePath.isEmpty() ? u"offered"_s : u"offered and installed"_s);
    return 0;
}

int verify(const QStringList &arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Says which package of a manifest a tray would take, and whether it would offer "
                                     "it and install PACKAGE."_s);
    parser.addOptions({{u"public-key"_s, u"the tray's KORVEL_UPDATE_PUBKEY"_s, u"K"_s},
                       {u"edition"_s, u"cn or intl"_s, u"E"_s},
                       {u"installed"_s, u"the version that runs (0)"_s, u"V"_s, u"0"_s}});
    parser.addPositionalArgument(u"M"_s, u"the manifest"_s);
    parser.addPositionalArgument(u"PACKAGE"_s, u"the file that the tray would have downloaded"_s, u"[PACKAGE]"_s);
    if (!parse(parser, arguments, 1, 2))
        return complain(USAGE, u"verify takes the manifest, and at most one package"_s);
    const QString edition = parser.value(u"edition"_s), key = parser.value(u"public-key"_s);
    if (edition != u"cn" && edition != u"intl")
        return complain(USAGE, u"--edition is cn or intl"_s);
    if (QByteArray::fromBase64(key.toLatin1()).size() != 32)
        return complain(USAGE, u"--public-key is no base64 text of 32 bytes"_s);
    const QStringList files = parser.positionalArguments();
    return verifyFor(trayWith(edition, key, parser.value(u"installed"_s)), files[0], files.value(1));
}

int run(QStringList arguments) {
    const QString command = arguments.size() > 1 ? arguments.takeAt(1) : QString();
    if (command == u"make-key")
        return makeKey(arguments);
    if (command == u"sign")
        return sign(arguments);
    if (command == u"verify")
        return verify(arguments);
    const bool asked = command == u"--help" || command == u"-h";
    std::fputs(HELP, asked ? stdout : stderr);
    return asked ? 0 : USAGE;
}

} // namespace

} // namespace korvel

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    return korvel::run(QCoreApplication::arguments());
}
