#include "simulator/encryption_store.h"

#include "simulator/encryption_json.h"
#include "simulator/file_lock.h"
#include "simulator/files.h"
#include "simulator/scenario.h"

#include <QCryptographicHash>
#include <QDir>
#include <QJsonDocument>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

// A name for the sign-in that does not give its token away; empty while nobody is signed in.
QString signInOf(const AgentConfig &config) {
    const QByteArray token = config.read().value("agentToken"_L1).toString().toUtf8();
    if (token.isEmpty())
        return {};
    return QString::fromLatin1(QCryptographicHash::hash(token, QCryptographicHash::Sha256).toHex().first(16));
}

} // namespace

Encryption EncryptionStore::read() const {
    Encryption found;
    change([&found](const Encryption &encryption, const EncryptionRules &, qint64) {
        found = encryption;
        return true;
    });
    return found;
}

bool EncryptionStore::change(const std::function<bool(Encryption &, const EncryptionRules &, qint64)> &event) const {
    QDir().mkpath(paths.state());
    const FileLock lock(paths.encryption() + ".lock"_L1);
    if (!lock.isHeld())
        return false;
    const Encryption stored = encryptionFrom(readObject(paths.encryption()).value_or(QJsonObject{}));
    const EncryptionRules rules = encryptionRules(Scenario::read(paths).section("e2ee"_L1));
    const QString signIn = signInOf(config);
    const qint64 now = timeNow();

    Encryption current = stored;
    if (current.signIn != signIn || current.began != rules.start.value_or(current.began))
        beginSignIn(current, signIn, rules, now);
    advance(current, rules, now);
    Encryption changed = current;
    const bool happened = event(changed, rules, now);
    if (happened)
        current = changed;
    if (current == stored)
        return happened;
    return replaceFile(paths.encryption(), QJsonDocument(toJson(current)).toJson()) && happened;
}

} // namespace korvel::sim
