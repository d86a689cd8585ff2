#include "simulator/server/update_offer.h"

#include "app/model/deployment.h"
#include "publisher/release.h"
#include "simulator/home/files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <openssl/evp.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 DEFAULT_BYTES = 200'000;
constexpr qint64 MAX_BYTES = 256 << 20; // sending takes three times as much memory

/// The private key of development builds, which is public: RFC 8032, section 7.1, test 1.
const char DEVELOPMENT_SEED[] = "9d61b19deffd5a60ba844af492ec2cc44449c5697b326919703bac031cae7f60";

QByteArray packageOf(const QString &version, qint64 bytes) {
    const QByteArray start = "korvel-package " + version.toUtf8() + '\n';
    const QByteArray line = "0123456789 filler of a package made up for development and tests\n";
    const qint64 filler = std::clamp(bytes, qint64(start.size()), MAX_BYTES) - start.size();
    return start + line.repeated(filler / line.size() + 1).left(filler);
}

/// With libcrypto: Qt takes seconds for a large package, which each request creates again.
QString sha256Of(const QByteArray &bytes) {
    QByteArray digest(EVP_MAX_MD_SIZE, '\0');
    size_t size = 0;
    EVP_Q_digest(nullptr, "SHA256", nullptr, bytes.constData(), size_t(bytes.size()),
                 reinterpret_cast<unsigned char *>(digest.data()), &size);
    return QString::fromLatin1(digest.first(qsizetype(size)).toHex());
}

QString hashFor(const QString &wanted, const QByteArray &package) {
    const QString right = sha256Of(package);
    if (wanted == "upper-case"_L1)
        return right.toUpper();
    return wanted == "bad"_L1 ? (right.front() == u'0' ? u'1' : u'0') + right.mid(1) : right;
}

QString signatureFor(const QString &wanted, UpdateInfo info) {
    if (wanted == "wrong-order"_L1)
        std::swap(info.file, info.ver);
    const QString right = signatureOf(*SigningKey::fromSeed(QByteArray::fromHex(DEVELOPMENT_SEED)), info);
    if (wanted != "bad"_L1)
        return right;
    QByteArray bytes = QByteArray::fromBase64(right.toLatin1());
    bytes[0] = char(bytes[0] ^ 1);
    return QString::fromLatin1(bytes.toBase64());
}

QByteArray manifestFor(const QJsonValue &wanted, const QJsonObject &right) {
    if (wanted.isString())
        return wanted.toString().toUtf8();
    return QJsonDocument(mergePatch(right, wanted.toObject())).toJson();
}

} // namespace

UpdateOffer updateOffer(const QJsonObject &section) {
    const Deployment built = builtDeployment();
    const bool mainland = section.value("edition"_L1).toString(built.edition) == "cn"_L1;
    UpdateInfo info;
    info.ver = section.value("ver"_L1).toString(built.version);
    const QString usualName = u"Korvel-"_s + info.ver + (mainland ? u"-cn.pkg"_s : u".pkg"_s);
    info.file = section.value("file"_L1).toString(usualName);
    const QByteArray package = packageOf(info.ver, section.value("bytes"_L1).toInteger(DEFAULT_BYTES));
    info.bytes = section.value("size"_L1).toInteger(package.size());
    info.sha = hashFor(section.value("sha256"_L1).toString(), package);
    info.sig = signatureFor(section.value("signature"_L1).toString(), info);
    QJsonObject entry = entryOf(info);
    entry.insert(u"platform"_s, mainland ? u"mac-cn"_s : u"mac"_s); // even if the file name says otherwise
    const QJsonObject manifest{{u"packages"_s, QJsonArray{entry}}};
    return {info, package, manifestFor(section.value("manifest"_L1), manifest)};
}

} // namespace korvel::sim
