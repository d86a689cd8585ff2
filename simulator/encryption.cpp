#include "simulator/encryption.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>

namespace korvel::sim {

namespace {

bool isShown(const Encryption &encryption, const QString &code) {
    return code == encryption.code || std::any_of(encryption.devices.begin(), encryption.devices.end(),
                                                  [&](const AskingDevice &device) { return device.code == code; });
}

qint64 dueAfter(qint64 now, int milliseconds) { return milliseconds > 0 ? now + milliseconds : 0; }

// The one step that is due, at its own time, so that what follows it is not late.
void step(Encryption &encryption, const EncryptionRules &rules) {
    const qint64 time = std::exchange(encryption.due, 0);
    switch (encryption.state) {
    case PairState::Starting:
        return enter(encryption, encryption.phone ? PairState::Pending : PairState::Waiting, rules, time);
    case PairState::Pending:
        return enter(encryption, encryption.paired ? PairState::Active : PairState::Expired, rules, time);
    case PairState::Expired:
        return showNewCode(encryption, rules, time);
    default:
        return;
    }
}

void advanceSpeech(SpeechInstall &speech, int asrMs, qint64 now) {
    if (speech.state != SpeechInstall::State::Downloading)
        return;
    const qint64 percent = asrMs > 0 ? (now - speech.started) * 100 / asrMs : 100;
    speech.percent = int(std::clamp<qint64>(percent, 0, 100));
    if (speech.percent == 100)
        speech.state = SpeechInstall::State::Ready;
}

} // namespace

void beginSignIn(Encryption &encryption, const QString &signIn, const EncryptionRules &rules, qint64 now) {
    Encryption fresh;
    fresh.signIn = signIn;
    fresh.began = rules.start.value_or(PairState::Active);
    fresh.phone = encryption.phone;
    fresh.required = encryption.required;
    fresh.relay = encryption.relay;
    fresh.seed = rules.seed.value_or(encryption.seed);
    fresh.drawn = encryption.drawn;
    if (fresh.seed == 0)
        fresh.seed = QRandomGenerator::system()->generate();
    encryption = fresh;
    if (signIn.isEmpty())
        return;
    const bool phoneIsThere = encryption.began == PairState::Waiting && encryption.phone;
    enter(encryption, phoneIsThere ? PairState::Pending : encryption.began, rules, now);
}

void advance(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    while (encryption.due != 0 && encryption.due <= now)
        step(encryption, rules);
    advanceSpeech(encryption.speech, rules.asrMs, now);
}

void enter(Encryption &encryption, PairState state, const EncryptionRules &rules, qint64 now) {
    encryption.state = state;
    encryption.due = 0;
    encryption.code.clear();
    encryption.wrong = false;
    encryption.paired = false;
    if (state == PairState::Waiting)
        encryption.phone = false;
    if (state == PairState::Starting)
        encryption.due = dueAfter(now, rules.startMs);
    if (state == PairState::Expired)
        encryption.due = now + rules.renewMs;
    else
        encryption.wrongCodes = 0;
    if (state == PairState::Pending)
        showNewCode(encryption, rules, now);
}

void showNewCode(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    encryption.state = PairState::Pending;
    encryption.phone = true;
    encryption.code = drawCode(encryption);
    encryption.wrong = false;
    encryption.paired = false;
    encryption.due = dueAfter(now, rules.codeMs);
}

QString drawCode(Encryption &encryption) {
    QString code;
    do {
        const std::array<quint32, 2> words{encryption.seed, quint32(++encryption.drawn)};
        QRandomGenerator generator(words.data(), qsizetype(words.size()));
        code = QString::number(generator.bounded(1'000'000)).rightJustified(6, u'0');
    } while (isShown(encryption, code));
    return code;
}

} // namespace korvel::sim
