#include "simulator/control_encryption.h"

#include <cstdio>

namespace korvel::sim {

using namespace Qt::StringLiterals;

const char ENCRYPTION_HELP[] = R"(
What happens to the Mac's encryption; status 1 means that its state does not allow it:

  e2ee                     print the state that the agent reports
  e2ee STATE               put the Mac into a state: off, starting, waiting, pending, approved, pair-failed, rejected,
                           expired, active, revoked or suspended
  phone sign-in|sign-out   the phone signs in to the account, or leaves it
  phone type CODE          type a pairing code on the phone
  phone type-right         type the code that the Mac shows
  phone deny               deny the Mac on the phone
  pair-code                print the code that the Mac shows
  expire                   the Mac's code expires, and is then renewed
  revoke, suspend, approve the Mac is removed, is suspended, or is approved without keys
  require on|off           whether the account requires encryption
  relay up|down            whether the encrypted connection can be made
  trouble [TEXT]           the agent's problem text; none without TEXT
  device ask NAME PLATFORM a device asks to join; print its id and the code that it shows
  device reissue ID        it asks anew; print its new code
  device code ID           print the code that it shows
  device ready ID on|off   whether it can be answered
  device remove ID         it is answered elsewhere, or gives up
  alarm TEXT               raise a security alarm; print its id
  reset-alarm              raise the alarm of an encryption reset; print its id
  speech fail              the speech-recognition download fails
)";

namespace {

// Prints what was asked for; an empty text is a failure.
int print(const QString &text) {
    if (!text.isEmpty())
        std::puts(qUtf8Printable(text));
    return statusOf(!text.isEmpty());
}

// Which of two words an argument is; nothing for another.
std::optional<bool> eitherOf(const QString &argument, QLatin1StringView yes, QLatin1StringView no) {
    if (argument != yes && argument != no)
        return std::nullopt;
    return argument == yes;
}

int state(Home &home, const QStringList &arguments) {
    if (arguments.isEmpty())
        return print(home.encryption().state());
    return statusOf(home.encryption().setState(arguments[0]));
}

int phone(Home &home, const QStringList &arguments) {
    const QString &act = arguments[0];
    Phone phone = home.phone();
    if (act == "type"_L1)
        return arguments.size() == 2 ? statusOf(phone.type(QString(arguments[1]).remove(u' '))) : USAGE;
    if (arguments.size() != 1)
        return USAGE;
    if (act == "sign-in"_L1)
        return statusOf(phone.signIn());
    if (act == "sign-out"_L1)
        return statusOf(phone.signOut());
    if (act == "type-right"_L1)
        return statusOf(phone.typeRight());
    return act == "deny"_L1 ? statusOf(phone.deny()) : USAGE;
}

int pairCode(Home &home, const QStringList &) { return print(home.encryption().pairCode()); }

int expire(Home &home, const QStringList &) { return statusOf(home.encryption().expire()); }

int revoke(Home &home, const QStringList &) { return statusOf(home.encryption().revoke()); }

int suspend(Home &home, const QStringList &) { return statusOf(home.encryption().suspend()); }

int approve(Home &home, const QStringList &) { return statusOf(home.encryption().approve()); }

int require(Home &home, const QStringList &arguments) {
    const auto on = eitherOf(arguments[0], "on"_L1, "off"_L1);
    return on ? statusOf(home.encryption().setRequired(*on)) : USAGE;
}

int relay(Home &home, const QStringList &arguments) {
    const auto up = eitherOf(arguments[0], "up"_L1, "down"_L1);
    return up ? statusOf(home.encryption().setRelay(*up)) : USAGE;
}

int trouble(Home &home, const QStringList &arguments) {
    return statusOf(home.encryption().setTrouble(arguments.value(0)));
}

int device(Home &home, const QStringList &arguments) {
    AccountControl account = home.encryption();
    const QString &act = arguments[0];
    const QString &subject = arguments[1];
    if (act == "ask"_L1 && arguments.size() == 3) {
        const AskedDevice asked = account.askDevice(subject, arguments[2]);
        return print(asked.pendingId.isEmpty() ? QString() : asked.pendingId + u' ' + asked.code);
    }
    if (act == "ready"_L1 && arguments.size() == 3) {
        const auto ready = eitherOf(arguments[2], "on"_L1, "off"_L1);
        return ready ? statusOf(account.setDeviceReady(subject, *ready)) : USAGE;
    }
    if (arguments.size() != 2)
        return USAGE;
    if (act == "reissue"_L1)
        return account.reissueDevice(subject) ? print(account.deviceCode(subject)) : 1;
    if (act == "code"_L1)
        return print(account.deviceCode(subject));
    return act == "remove"_L1 ? statusOf(account.removeDevice(subject)) : USAGE;
}

int alarm(Home &home, const QStringList &arguments) { return print(home.encryption().raiseAlarm(arguments[0])); }

int resetAlarm(Home &home, const QStringList &) { return print(home.encryption().raiseResetAlarm()); }

int speech(Home &home, const QStringList &arguments) {
    return arguments[0] == "fail"_L1 ? statusOf(home.encryption().failSpeech()) : USAGE;
}

constexpr CommandEntry COMMANDS[] = {
    {"e2ee"_L1, 0, 1, state},
    {"phone"_L1, 1, 2, phone},
    {"pair-code"_L1, 0, 0, pairCode},
    {"expire"_L1, 0, 0, expire},
    {"revoke"_L1, 0, 0, revoke},
    {"suspend"_L1, 0, 0, suspend},
    {"approve"_L1, 0, 0, approve},
    {"require"_L1, 1, 1, require},
    {"relay"_L1, 1, 1, relay},
    {"trouble"_L1, 0, 1, trouble},
    {"device"_L1, 2, 3, device},
    {"alarm"_L1, 1, 1, alarm},
    {"reset-alarm"_L1, 0, 0, resetAlarm},
    {"speech"_L1, 1, 1, speech},
};

} // namespace

std::span<const CommandEntry> encryptionCommands() { return COMMANDS; }

} // namespace korvel::sim
