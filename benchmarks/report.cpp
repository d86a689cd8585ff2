#include "benchmarks/report.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace korvel::bench {

QJsonObject health(int devices) {
    QJsonArray pending, alarms;
    for (int i = 0; i < devices; ++i) {
        const QString id = QString::number(i);
        pending.append(QJsonObject{{u"pendingId"_s, id},
                                   {u"attempt"_s, 1},
                                   {u"name"_s, u"Phone "_s + id},
                                   {u"platform"_s, u"ios"_s},
                                   {u"ready"_s, true}});
        alarms.append(QJsonObject{{u"id"_s, id}, {u"text"_s, u"Somebody tried to sign in."_s}});
    }
    const QJsonObject report{
        {u"state"_s, u"active"_s}, {u"relay"_s, u"ok"_s}, {u"pending"_s, pending}, {u"alarms"_s, alarms}};
    return {{u"ok"_s, true},
            {u"online"_s, true},
            {u"account"_s, u"ann"_s},
            {u"sessions"_s, 2},
            {u"ver"_s, u"agent/2.1.0"_s},
            {u"e2ee"_s, report},
            {u"perms"_s, QJsonObject{{u"ok"_s, true}}}};
}

QByteArray healthText(int devices) { return QJsonDocument(health(devices)).toJson(QJsonDocument::Compact); }

} // namespace korvel::bench
