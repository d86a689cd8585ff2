#include "simulator/encryption_events.h"

#include <algorithm>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int CODE_LENGTH = 6;

bool isCode(const QString &code) {
    return code.size() == CODE_LENGTH &&
           std::all_of(code.begin(), code.end(), [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
}

bool takesCode(const Encryption &encryption) { return encryption.state == PairState::Pending && !encryption.paired; }

QString drawIdentity(Encryption &encryption, QLatin1StringView kind) {
    return kind + u'-' + QString::number(++encryption.drawn);
}

} // namespace

bool phoneSignsIn(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    encryption.phone = true;
    if (encryption.state == PairState::Waiting)
        enter(encryption, PairState::Pending, rules, now);
    return true;
}

bool phoneSignsOut(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    encryption.phone = false;
    if (encryption.state == PairState::Pending || encryption.state == PairState::Expired)
        enter(encryption, PairState::Waiting, rules, now);
    return true;
}

bool phoneTypes(Encryption &encryption, const QString &code, const EncryptionRules &rules, qint64 now) {
    if (!takesCode(encryption))
        return false;
    if (code == encryption.code) {
        encryption.paired = true;
        encryption.wrong = false;
        encryption.due = now + rules.turnOnMs;
        return true;
    }
    if (++encryption.wrongCodes >= rules.wrongCodes) {
        enter(encryption, PairState::PairFailed, rules, now);
        return true;
    }
    showNewCode(encryption, rules, now);
    encryption.wrong = true;
    return true;
}

bool phoneDenies(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    if (!takesCode(encryption))
        return false;
    enter(encryption, PairState::Rejected, rules, now);
    return true;
}

AskingDevice deviceAsks(Encryption &encryption, const QString &name, const QString &platform) {
    AskingDevice device;
    device.pendingId = drawIdentity(encryption, "device"_L1);
    device.name = name;
    device.platform = platform;
    device.code = drawCode(encryption);
    encryption.devices.append(device);
    return device;
}

bool deviceAsksAgain(Encryption &encryption, const QString &pendingId) {
    AskingDevice *device = findDevice(encryption, pendingId);
    if (device == nullptr)
        return false;
    ++device->attempt;
    device->code = drawCode(encryption);
    return true;
}

AskingDevice *findDevice(Encryption &encryption, const QString &pendingId) {
    const auto found = std::find_if(encryption.devices.begin(), encryption.devices.end(),
                                    [&](const AskingDevice &device) { return device.pendingId == pendingId; });
    return found == encryption.devices.end() ? nullptr : &*found;
}

bool removeDevice(Encryption &encryption, const QString &pendingId) {
    return encryption.devices.removeIf([&](const AskingDevice &device) { return device.pendingId == pendingId; }) > 0;
}

QString raiseAlarm(Encryption &encryption, const QString &kind, const QString &text) {
    const QString id = drawIdentity(encryption, "alarm"_L1);
    encryption.alarms.append({id, kind, text});
    return id;
}

Verdict answerDevice(Encryption &encryption, const QString &pendingId, const QString &code) {
    if (!isCode(code))
        return Verdict::BadCode;
    const AskingDevice *device = findDevice(encryption, pendingId);
    if (device == nullptr)
        return Verdict::Answered;
    if (device->code != code)
        return Verdict::WrongCode;
    removeDevice(encryption, pendingId);
    return Verdict::Done;
}

Verdict rejectDevice(Encryption &encryption, const QString &pendingId) {
    return removeDevice(encryption, pendingId) ? Verdict::Done : Verdict::Answered;
}

Verdict renewCode(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    if (!takesCode(encryption) && encryption.state != PairState::Expired)
        return Verdict::NotPairing;
    showNewCode(encryption, rules, now);
    return Verdict::Done;
}

Verdict dismissAlarm(Encryption &encryption, const QString &id) {
    return encryption.alarms.removeIf([&](const SecurityAlarm &alarm) { return alarm.id == id; }) > 0
               ? Verdict::Done
               : Verdict::NoAlarm;
}

Verdict acceptReset(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    if (encryption.alarms.removeIf([](const SecurityAlarm &alarm) { return alarm.kind == "reset"_L1; }) == 0)
        return Verdict::NoReset;
    enter(encryption, PairState::Pending, rules, now);
    return Verdict::Done;
}

Verdict installSpeech(Encryption &encryption, qint64 now) {
    using State = SpeechInstall::State;
    SpeechInstall &speech = encryption.speech;
    if (speech.state == State::Absent || speech.state == State::Failed)
        speech = {State::Downloading, 0, now};
    return Verdict::Done; // under way or there already: all is as asked
}

Verdict leaveEncryption(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    encryption.devices.clear();
    encryption.alarms.clear();
    enter(encryption, PairState::Off, rules, now);
    return Verdict::Done;
}

} // namespace korvel::sim
