// korvel-publish: makes the publisher's key, signs packages into a manifest, and verifies a manifest as a tray does.

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

const char HELP[] = R"(Usage: korvel-publish COMMAND ...

  make-key FILE     make an Ed25519 key. The private half goes to FILE, which must not exist and which only you can
                    read; the public half is printed, for KORVEL_UPDATE_PUBKEY

  sign --key FILE --version V --manifest M PACKAGE...
                    sign packages of version V (one to four numbers with dots between them) and put each into the
                    manifest, in place of the older one of its edition: cn for a name that ends in "-cn.pkg", intl for
                    any other. All of them or none. The manifest is made if it does not exist

  verify --public-key K --edition cn|intl [--installed V] M [PACKAGE]
                    say which package of the manifest a tray of version V (0) with that public key takes, whether it
                    offers it, and whether it would install PACKAGE if that is what it downloaded

Exit status: 0 done, offered, installed; 1 not, for the reason printed; 2 the command line is wrong.
)";

void say(const QString &line) { std::puts(qUtf8Printable(line)); }

int complain(int status, const QString &text) {
    std::fprintf(stderr, "korvel-publish: %s\n", qUtf8Printable(text));
    return status;
}

/// Parses the options of a command and returns its files, from `fewest` to `most`. Prints the error and returns none if
/// the command line is wrong.
std::optional<QStringList> filesOf(QCommandLineParser &parser, const QStringList &arguments,
                                   const QStringList &required, qsizetype fewest, qsizetype most) {
    QString wrong = parser.parse(arguments) ? QString() : parser.errorText();
    for (const QString &option : required)
        if (wrong.isEmpty() && !parser.isSet(option))
            wrong = u"--%1 is missing"_s.arg(option);
    const QStringList files = parser.positionalArguments();
    if (wrong.isEmpty() && (files.size() < fewest || files.size() > most))
        wrong = u"too few or too many files"_s;
    if (wrong.isEmpty())
        return files;
    complain(USAGE, wrong + u" (see korvel-publish --help)"_s);
    return std::nullopt;
}

QCommandLineOption option(const QString &name) { return {name, {}, name}; }

int makeKey(const QStringList &arguments) {
    QCommandLineParser parser;
    const auto files = filesOf(parser, arguments, {}, 1, 1);
    if (!files)
        return USAGE;
    const QString path = files->first();
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
    parser.addOptions({option(u"key"_s), option(u"version"_s), option(u"manifest"_s)});
    const auto packages = filesOf(parser, arguments, {u"key"_s, u"version"_s, u"manifest"_s}, 1, arguments.size());
    if (!packages)
        return USAGE;
    const Result<SigningKey> key = SigningKey::read(parser.value(u"key"_s));
    if (!key)
        return complain(REFUSED, parser.value(u"key"_s) + u": "_s + key.error().detail);
    return signPackages(key.value(), parser.value(u"version"_s), parser.value(u"manifest"_s), *packages);
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
    parser.addOptions({option(u"public-key"_s), option(u"edition"_s), option(u"installed"_s)});
    const auto files = filesOf(parser, arguments, {u"public-key"_s, u"edition"_s}, 1, 2);
    if (!files)
        return USAGE;
    const QString edition = parser.value(u"edition"_s), key = parser.value(u"public-key"_s);
    if (edition != u"cn" && edition != u"intl")
        return complain(USAGE, u"--edition is cn or intl"_s);
    if (QByteArray::fromBase64(key.toLatin1()).size() != 32)
        return complain(USAGE, u"--public-key is no base64 text of 32 bytes"_s);
    const QString installed = parser.isSet(u"installed"_s) ? parser.value(u"installed"_s) : u"0"_s;
    return verifyFor(trayWith(edition, key, installed), files->first(), files->value(1));
}

int run(QStringList arguments) {
    if (arguments.contains(u"--help"_s)) {
        std::fputs(HELP, stdout);
        return 0;
    }
    const QString command = arguments.size() > 1 ? arguments.takeAt(1) : QString();
    if (command == u"make-key")
        return makeKey(arguments);
    if (command == u"sign")
        return sign(arguments);
    return command == u"verify" ? verify(arguments) : complain(USAGE, u"see korvel-publish --help"_s);
}

} // namespace

} // namespace korvel

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    return korvel::run(QCoreApplication::arguments());
}
