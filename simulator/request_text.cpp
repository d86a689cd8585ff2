#include "simulator/request_text.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace korvel::sim {

using namespace Qt::StringLiterals;

QJsonValue withoutPasswords(const QJsonValue &value) {
    if (value.isArray()) {
        QJsonArray cleaned;
        for (const QJsonValue element : value.toArray())
            cleaned.append(withoutPasswords(element));
        return cleaned;
    }
    if (!value.isObject())
        return value;
    QJsonObject cleaned = value.toObject();
    for (auto entry = cleaned.begin(); entry != cleaned.end(); ++entry)
        entry.value() = entry.key() == "password"_L1 ? QJsonValue(u"***"_s) : withoutPasswords(entry.value());
    return cleaned;
}

QString bodyToLog(const HttpRequest &request) {
    if (request.body.isEmpty())
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(request.body);
    if (document.isObject())
        return QString::fromUtf8(
            QJsonDocument(withoutPasswords(document.object()).toObject()).toJson(QJsonDocument::Compact));
    if (!request.header("content-type").startsWith("application/x-www-form-urlencoded"))
        return u"(%1 bytes)"_s.arg(request.body.size());
    QByteArrayList fields = request.body.split('&');
    for (QByteArray &field : fields)
        if (field.startsWith("password="))
            field = "password=***";
    return QString::fromUtf8(fields.join('&'));
}

QString bearerToken(const HttpRequest &request) {
    const QByteArray field = request.header("authorization");
    const QByteArray scheme = "Bearer ";
    return field.startsWith(scheme) ? QString::fromUtf8(field.sliced(scheme.size())) : QString();
}

} // namespace korvel::sim
