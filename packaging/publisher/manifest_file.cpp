#include "publisher/manifest_file.h"

#include "base/private_file.h"
#include "ports/server_client.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace korvel {

Result<QByteArray> readManifest(const QString &path) {
    const auto bytes = readRegularFile(path, ServerRequest().maxBytes);
    if (!bytes)
        return Error{ErrorKind::UnreadableResponse, u"it cannot be read, or is too large"_s};
    return *bytes;
}

Result<QJsonObject> manifestToExtend(const QString &path) {
    const QFileInfo file(path);
    if (!file.exists() && !file.isSymLink())
        return QJsonObject();
    const Result<QByteArray> bytes = readManifest(path);
    if (!bytes)
        return bytes.error();
    const QJsonDocument document = QJsonDocument::fromJson(bytes.value());
    if (!document.isObject())
        return Error{ErrorKind::UnreadableResponse, u"it holds no JSON object"_s};
    return document.object();
}

QString replaceManifest(const QString &path, const QJsonObject &manifest) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    file.write(QJsonDocument(manifest).toJson());
    return file.commit() ? QString() : file.errorString();
}

} // namespace korvel
