#include "simulator/encryption_json.h"

#include "simulator/files.h"

#include <QJsonArray>

#include <algorithm>
#include <iterator>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

// In the order of the enumerations.
constexpr QLatin1StringView STATE_NAMES[] = {
    "off"_L1,      "starting"_L1, "waiting"_L1, "pending"_L1, "approved"_L1,  "pair-failed"_L1,
    "rejected"_L1, "expired"_L1,  "active"_L1,  "revoked"_L1, "suspended"_L1,
};
constexpr QLatin1StringView SPEECH_NAMES[] = {"absent"_L1, "download"_L1, "failed"_L1, "ready"_L1};

template <class Names>
int indexIn(const Names &names, const QString &name) {
    const auto found = std::find(std::begin(names), std::end(names), name);
    return found == std::end(names) ? -1 : int(found - std::begin(names));
}

QJsonObject pairReport(const Encryption &encryption) {
    QJsonObject pair{{u"show"_s, encryption.code}};
    if (encryption.wrong)
        pair.insert("wrong"_L1, true);
    if (encryption.paired)
        pair.insert("paired"_L1, true);
    return pair;
}

QJsonArray devicesReport(const QList<AskingDevice> &devices) {
    QJsonArray list;
    for (const AskingDevice &device : devices)
        list.append(QJsonObject{{u"pendingId"_s, device.pendingId},
                                {u"attempt"_s, device.attempt},
                                {u"name"_s, device.name},
                                {u"platform"_s, device.platform},
                                {u"ready"_s, device.ready},
                                {u"busy"_s, device.busy}});
    return list;
}

QJsonArray toJson(const QList<SecurityAlarm> &alarms) {
    QJsonArray list;
    for (const SecurityAlarm &alarm : alarms)
        list.append(QJsonObject{{u"id"_s, alarm.id}, {u"kind"_s, alarm.kind}, {u"text"_s, alarm.text}});
    return list;
}

QJsonObject speechReport(const SpeechInstall &speech) {
    if (speech.state == SpeechInstall::State::Ready)
        return {{u"ready"_s, true}};
    QJsonObject report{{u"ready"_s, false}, {u"installing"_s, SPEECH_NAMES[int(speech.state)]}};
    if (speech.state == SpeechInstall::State::Downloading)
        report.insert("pct"_L1, speech.percent);
    return report;
}

QJsonArray storedDevices(const QList<AskingDevice> &devices) {
    QJsonArray list = devicesReport(devices);
    for (qsizetype index = 0; index < devices.size(); ++index) {
        QJsonObject device = list[index].toObject();
        device.remove("busy"_L1);
        device.insert("code"_L1, devices[index].code);
        list[index] = device;
    }
    return list;
}

QList<AskingDevice> devicesFrom(const QJsonArray &list) {
    QList<AskingDevice> devices;
    for (const QJsonValue &entry : list)
        devices.append({entry["pendingId"_L1].toString(), entry["attempt"_L1].toInt(1), entry["name"_L1].toString(),
                        entry["platform"_L1].toString(), entry["code"_L1].toString(), entry["ready"_L1].toBool()});
    return devices;
}

QList<SecurityAlarm> alarmsFrom(const QJsonArray &list) {
    QList<SecurityAlarm> alarms;
    for (const QJsonValue &entry : list)
        alarms.append({entry["id"_L1].toString(), entry["kind"_L1].toString(), entry["text"_L1].toString()});
    return alarms;
}

SpeechInstall speechFrom(const QJsonValue &stored) {
    const int state = std::max(indexIn(SPEECH_NAMES, stored["state"_L1].toString()), 0);
    return {SpeechInstall::State(state), stored["percent"_L1].toInt(), stored["started"_L1].toInteger()};
}

} // namespace

QString nameOf(PairState state) { return STATE_NAMES[int(state)]; }

std::optional<PairState> pairStateNamed(const QString &name) {
    const int index = indexIn(STATE_NAMES, name);
    return index < 0 ? std::nullopt : std::optional(PairState(index));
}

EncryptionRules encryptionRules(const QJsonObject &settings) {
    EncryptionRules rules;
    rules.start = pairStateNamed(settings.value("start"_L1).toString());
    rules.wrongCodes = settings.value("wrongCodes"_L1).toInt(rules.wrongCodes);
    rules.startMs = milliseconds(settings, "startMs"_L1, rules.startMs);
    rules.codeMs = milliseconds(settings, "codeMs"_L1, rules.codeMs);
    rules.renewMs = milliseconds(settings, "renewMs"_L1, rules.renewMs);
    rules.turnOnMs = milliseconds(settings, "turnOnMs"_L1, rules.turnOnMs);
    rules.asrMs = milliseconds(settings, "asrMs"_L1, rules.asrMs);
    if (settings.contains("seed"_L1))
        rules.seed = quint32(settings.value("seed"_L1).toInteger());
    return rules;
}

QJsonObject encryptionReport(const Encryption &encryption, bool online) {
    QJsonObject report{{u"state"_s, nameOf(encryption.state)}};
    if (encryption.required)
        report.insert("required"_L1, true);
    if (encryption.state == PairState::Pending)
        report.insert("pair"_L1, pairReport(encryption));
    if (encryption.state == PairState::Active && online)
        report.insert("relay"_L1, encryption.relay ? u"ok"_s : u"connecting"_s);
    if (!encryption.trouble.isEmpty())
        report.insert("trouble"_L1, encryption.trouble);
    if (!encryption.devices.isEmpty())
        report.insert("pending"_L1, devicesReport(encryption.devices));
    if (!encryption.alarms.isEmpty())
        report.insert("alarms"_L1, toJson(encryption.alarms));
    if (encryption.speech.state != SpeechInstall::State::Absent)
        report.insert("asr"_L1, speechReport(encryption.speech));
    return report;
}

QJsonObject toJson(const Encryption &encryption) {
    const SpeechInstall &speech = encryption.speech;
    return {{u"signIn"_s, encryption.signIn},
            {u"began"_s, nameOf(encryption.began)},
            {u"state"_s, nameOf(encryption.state)},
            {u"due"_s, encryption.due},
            {u"phone"_s, encryption.phone},
            {u"required"_s, encryption.required},
            {u"relay"_s, encryption.relay},
            {u"trouble"_s, encryption.trouble},
            {u"code"_s, encryption.code},
            {u"wrong"_s, encryption.wrong},
            {u"paired"_s, encryption.paired},
            {u"wrongCodes"_s, encryption.wrongCodes},
            {u"devices"_s, storedDevices(encryption.devices)},
            {u"alarms"_s, toJson(encryption.alarms)},
            {u"speech"_s, QJsonObject{{u"state"_s, SPEECH_NAMES[int(speech.state)]},
                                      {u"percent"_s, speech.percent},
                                      {u"started"_s, speech.started}}},
            {u"seed"_s, qint64(encryption.seed)},
            {u"drawn"_s, encryption.drawn}};
}

Encryption encryptionFrom(const QJsonObject &stored) {
    Encryption encryption;
    encryption.signIn = stored.value("signIn"_L1).toString();
    encryption.began = pairStateNamed(stored.value("began"_L1).toString()).value_or(encryption.began);
    encryption.state = pairStateNamed(stored.value("state"_L1).toString()).value_or(encryption.state);
    encryption.due = stored.value("due"_L1).toInteger();
    encryption.phone = stored.value("phone"_L1).toBool();
    encryption.required = stored.value("required"_L1).toBool();
    encryption.relay = stored.value("relay"_L1).toBool(true);
    encryption.trouble = stored.value("trouble"_L1).toString();
    encryption.code = stored.value("code"_L1).toString();
    encryption.wrong = stored.value("wrong"_L1).toBool();
    encryption.paired = stored.value("paired"_L1).toBool();
    encryption.wrongCodes = stored.value("wrongCodes"_L1).toInt();
    encryption.devices = devicesFrom(stored.value("devices"_L1).toArray());
    encryption.alarms = alarmsFrom(stored.value("alarms"_L1).toArray());
    encryption.speech = speechFrom(stored.value("speech"_L1));
    encryption.seed = quint32(stored.value("seed"_L1).toInteger());
    encryption.drawn = stored.value("drawn"_L1).toInt();
    return encryption;
}

} // namespace korvel::sim
