// The update manifest: the real check on a manifest whose entries the mutator signs anew with a test key.
#include "exchange/ed25519.h"
#include "fuzz/json_mutator.h"
#include "support/signing.h"
#include "update/manifest.h"
#include "update/update_check.h"

#include <QList>

using namespace korvel;
using namespace Qt::StringLiterals;
using fuzz::require;

namespace {

FixedConfig configOf(const QString &edition) {
    return makeFixedConfig({.version = u"1.2.3"_s,
                            .edition = edition,
                            .cnServer = u"cn.example:443"_s,
                            .intlServers = {u"intl.example:443"_s},
                            .site = u"https://site.example"_s,
                            .updatePubkey = test::PUBLIC_KEY},
                           {});
}

/// Only the letters, digits and marks that are safe in a path and a shell command.
bool isPlain(const QString &text, const char *marks, qsizetype maxLength) {
    const QByteArray bytes = text.toUtf8();
    return !bytes.isEmpty() && bytes.size() <= maxLength && std::all_of(bytes.begin(), bytes.end(), [marks](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || std::strchr(marks, c);
    });
}

/// The world of one check: a server that sends the manifest, and verifies what it is given.
class World final : public ServerClient, public Notices, public Renderer, public Scheduler {
public:
    explicit World(QByteArray m) : manifest(std::move(m)) {}

    void send(ServerRequest, Done<HttpReply> done) override { done(HttpReply{200, manifest}); }
    void verify(const SignatureProof &proof, Done<bool> done) override {
        const QStringList lines = QString::fromUtf8(proof.message).split(u'\n');
        require(lines.size() == 4 && isPlain(lines.at(1), "._-", 84) && isPlain(lines.at(2), ".", 1000) &&
                    isPlain(lines.at(3), "", 64),
                "a signature covers a well-formed entry only");
        verified = lines;
        valid = ed25519Valid(proof);
        done(bool(valid));
    }
    void download(ServerRequest, const QString &, std::function<void(qint64, qint64)>, Done<HttpReply>) override {}
    void hash(const QString &, Done<QString>) override {}
    void showHUD(const Notice &) override { ++notices; }
    void hideHUD() override {}
    void stateChanged() override {}
    Instant now() const override { return {}; }
    Timer after(milliseconds, UniqueFunction<void()>) override { return {}; }
    Timer every(milliseconds, UniqueFunction<void()>) override { return {}; }
    void beforeWaiting(UniqueFunction<void()>) override {}
    void runInBackground(UniqueFunction<void()>, UniqueFunction<void()>) override {}

    QStringList verified;
    bool valid = false;
    int notices = 0;

private:
    const QByteArray manifest;
};

void checkUpdateOf(const FixedConfig &config, const QByteArray &manifest) {
    static const Paths PATHS;
    static const AgentConfig AGENT(PATHS);
    World world(manifest);
    UpdateState state;
    UpdateCheck check(state, config, AGENT, world, world, world, world);
    check.checkUpdate(true);
    require(world.notices == 1, "a check by the user shows one notice");
    require(state.updateAvail.has_value() == world.valid, "only a signed package is offered");
    if (!state.updateAvail)
        return;
    const UpdateInfo &info = *state.updateAvail;
    require(world.verified == QStringList{config.UPDATE_SIG_PREFIX, info.file, info.ver, info.sha},
            "it is the signed one");
    require(isNewer(info.ver, config.VERSION), "it is newer");
    require((info.file.endsWith(u"-cn.pkg", Qt::CaseInsensitive)) == config.IS_CN, "it is of this edition");
}

void checkOrder(const QStringList &versions) {
    for (const QString &a : versions) {
        require(!isNewer(a, a), "no version is newer than itself");
        for (const QString &b : versions) {
            require(!isNewer(a, b) || !isNewer(b, a), "the order is antisymmetric");
            for (const QString &c : versions) {
                require(!isNewer(a, b) || !isNewer(b, c) || isNewer(a, c), "the order is transitive");
                require(isNewer(a, b) || isNewer(b, c) || !isNewer(a, c), "equality is transitive");
            }
        }
    }
}

void signAnew(QJsonDocument &document) {
    QJsonObject manifest = document.object();
    QJsonArray packages = manifest[u"packages"].toArray();
    for (QJsonValueRef package : packages) {
        QJsonObject entry = package.toObject();
        const UpdateInfo info{
            .ver = entry[u"ver"].toString(), .file = entry[u"file"].toString(), .sha = entry[u"sha256"].toString()};
        if (!entry.isEmpty())
            entry[u"sig"] = test::signature(signedMessage(configOf(u"cn"_s).UPDATE_SIG_PREFIX, info));
        package = entry;
    }
    manifest[u"packages"] = packages;
    document.setObject(manifest);
}

} // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize, unsigned seed) {
    return fuzz::mutateJson(data, size, maxSize, seed, [seed](QJsonDocument &document) {
        if (seed % 8 != 1 && document.object()[u"packages"].isArray())
            signAnew(document);
    });
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const FixedConfig CN = configOf(u"cn"_s), INTL = configOf(u"intl"_s);
    const fuzz::Input input(data, size);
    checkUpdateOf(CN, input.bytes);
    checkUpdateOf(INTL, input.bytes);
    QStringList versions{u"1.2.3"_s};
    for (const QJsonValue package : QJsonDocument::fromJson(input.bytes).object()[u"packages"].toArray()) {
        const QJsonObject entry = package.toObject();
        require(!isOurPackage(CN, entry) || !isOurPackage(INTL, entry), "an entry is for one edition");
        if (versions.size() < 4)
            versions.append(entry[u"ver"].toString());
    }
    checkOrder(versions);
    return 0;
}
