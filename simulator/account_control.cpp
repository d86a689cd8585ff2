#include "simulator/account_control.h"

#include "simulator/encryption_events.h"
#include "simulator/encryption_json.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

bool isSignedIn(const Encryption &encryption) { return !encryption.signIn.isEmpty(); }

bool enterState(const EncryptionStore &store, PairState state) {
    return store.change([state](Encryption &encryption, const EncryptionRules &rules, qint64 now) {
        if (!isSignedIn(encryption))
            return false;
        enter(encryption, state, rules, now);
        return true;
    });
}

// Changes what needs neither the rules nor the time.
bool changeSimply(const EncryptionStore &store, const std::function<bool(Encryption &)> &event) {
    return store.change([&](Encryption &encryption, const EncryptionRules &, qint64) { return event(encryption); });
}

QString raise(const EncryptionStore &store, const QString &kind, const QString &text) {
    QString id;
    const bool raised = changeSimply(store, [&](Encryption &encryption) {
        if (isSignedIn(encryption))
            id = raiseAlarm(encryption, kind, text);
        return !id.isEmpty();
    });
    return raised ? id : QString();
}

} // namespace

QString AccountControl::state() const { return nameOf(store.read().state); }

QString AccountControl::pairCode() const {
    const Encryption encryption = store.read();
    return encryption.paired ? QString() : encryption.code;
}

QString AccountControl::deviceCode(const QString &pendingId) const {
    Encryption encryption = store.read();
    const AskingDevice *device = findDevice(encryption, pendingId);
    return device == nullptr ? QString() : device->code;
}

bool AccountControl::setState(const QString &state) {
    const auto named = pairStateNamed(state);
    return named && enterState(store, *named);
}

bool AccountControl::expire() {
    return store.change([](Encryption &encryption, const EncryptionRules &rules, qint64 now) {
        if (encryption.state != PairState::Pending || encryption.paired)
            return false;
        enter(encryption, PairState::Expired, rules, now);
        return true;
    });
}

bool AccountControl::revoke() { return enterState(store, PairState::Revoked); }

bool AccountControl::suspend() { return enterState(store, PairState::Suspended); }

bool AccountControl::approve() { return enterState(store, PairState::Approved); }

bool AccountControl::setRequired(bool required) {
    return changeSimply(store, [required](Encryption &encryption) {
        encryption.required = required;
        return true;
    });
}

bool AccountControl::setTrouble(const QString &text) {
    return changeSimply(store, [&](Encryption &encryption) {
        encryption.trouble = text;
        return isSignedIn(encryption);
    });
}

bool AccountControl::setRelay(bool up) {
    return changeSimply(store, [up](Encryption &encryption) {
        encryption.relay = up;
        return true;
    });
}

AskedDevice AccountControl::askDevice(const QString &name, const QString &platform) {
    AskedDevice asked;
    const bool done = changeSimply(store, [&](Encryption &encryption) {
        if (!isSignedIn(encryption))
            return false;
        const AskingDevice device = deviceAsks(encryption, name, platform);
        asked = {device.pendingId, device.code};
        return true;
    });
    return done ? asked : AskedDevice{};
}

bool AccountControl::reissueDevice(const QString &pendingId) {
    return changeSimply(store, [&](Encryption &encryption) { return deviceAsksAgain(encryption, pendingId); });
}

bool AccountControl::setDeviceReady(const QString &pendingId, bool ready) {
    return changeSimply(store, [&](Encryption &encryption) {
        AskingDevice *device = findDevice(encryption, pendingId);
        if (device != nullptr)
            device->ready = ready;
        return device != nullptr;
    });
}

bool AccountControl::removeDevice(const QString &pendingId) {
    return changeSimply(store,
                        [&](Encryption &encryption) { return korvel::sim::removeDevice(encryption, pendingId); });
}

QString AccountControl::raiseAlarm(const QString &text) { return raise(store, u"alert"_s, text); }

QString AccountControl::raiseResetAlarm() { return raise(store, u"reset"_s, {}); }

bool AccountControl::failSpeech() {
    return changeSimply(store, [](Encryption &encryption) {
        encryption.speech = {SpeechInstall::State::Failed, 0, 0};
        return isSignedIn(encryption);
    });
}

} // namespace korvel::sim
