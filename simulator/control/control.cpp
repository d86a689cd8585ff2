#include "simulator/control/control.h"

#include "simulator/home/home.h"

#include <QJsonDocument>
#include <csignal>
#include <cstdio>
#include <optional>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int USAGE = 2;

int statusOf(bool success) { return success ? 0 : 1; }

/// Prints a text. Fails if it is empty.
int given(const QString &text) {
    if (!text.isEmpty())
        std::puts(qUtf8Printable(text));
    return statusOf(!text.isEmpty());
}

int show(Home &home) {
    const QJsonObject shown{{u"home"_s, home.path()},
                            {u"scenario"_s, home.scenario()},
                            {u"account"_s, home.account()},
                            {u"port"_s, home.port()},
                            {u"agentPid"_s, home.agentPid()},
                            {u"accountServer"_s, home.accountServer()},
                            {u"authority"_s, Home::authorityFile()},
                            {u"encryption"_s, home.encryption().state()}};
    return given(QString::fromUtf8(QJsonDocument(shown).toJson().trimmed()));
}

int set(Home &home, const QString &patch) {
    const QJsonDocument document = QJsonDocument::fromJson(patch.toUtf8());
    if (document.isObject())
        return statusOf(home.changeScenario(document.object()));
    std::fputs("korvel-simulator: the patch is not a JSON object\n", stderr);
    return USAGE;
}

int requestJoin(Home &home, const QString &name, const QString &platform) {
    const JoinRequest request = home.encryption().requestJoin(name, platform);
    return given(request.pendingId.isEmpty() ? QString() : request.pendingId + u' ' + request.code);
}

int credentials(Home &home) {
    for (const Credential &each : home.accounts().liveCredentials())
        given(each.agentId + u' ' + each.account + u' ' + each.host);
    return 0;
}

int permissions(Home &home) {
    for (const QString &name : Permissions::names())
        given(name + u": "_s + home.permissions().state(name));
    return 0;
}

using Words = const QStringList &;

/// One command. Its usage is the pattern to match: a word in capitals is an argument, one in brackets is optional,
/// "..." is any number of arguments.
struct Verb {
    const char *usage;
    const char *help;
    int (*run)(Home &home, Words arguments);
};

constexpr Verb VERBS[] = {
    {"set PATCH", "change the scenario by a JSON merge patch, e.g. set '{\"offline\": true}'",
     [](Home &h, Words a) { return set(h, a[0]); }},
    {"reset", "go back to the empty scenario, on which all goes well",
     [](Home &h, Words) { return statusOf(h.setScenario({})); }},
    {"show", "print the scenario, who is signed in, and the agent's process and port",
     [](Home &h, Words) { return show(h); }},
    {"sign-in NAME", "write a sign-in of NAME into agent.json",
     [](Home &h, Words a) { return statusOf(h.signIn(a[0])); }},
    {"sign-out", "remove the sign-in from agent.json", [](Home &h, Words) { return statusOf(h.signOut()); }},
    {"install-job", "write the agent's job file, without loading the job",
     [](Home &h, Words) { return statusOf(h.installJobFile()); }},
    {"bundle TRAY", "put Korvel.app with the tray program TRAY and the agent into the home; print the tray's path",
     [](Home &h, Words a) { return given(h.assembleBundle(a[0])); }},
    {"kill-agent", "kill the agent that launchd runs", [](Home &h, Words) { return statusOf(h.killAgent(SIGKILL)); }},
    {"launchctl ...", "run the fake launchctl; the agent's target is gui/UID/com.korvel.agent",
     [](Home &h, Words a) { return h.launchctl(a); }},
    {"shut-down", "unload every job and end what else of the simulator runs in the home",
     [](Home &h, Words) { return statusOf(h.shutDown()); }},
    {"e2ee STATE",
     "put the Mac into a state: off, starting, waiting, pending, approved, pair-failed, rejected, expired, active, "
     "revoked, suspended",
     [](Home &h, Words a) { return statusOf(h.encryption().setState(a[0])); }},
    {"phone sign-in", "the phone signs in to the account",
     [](Home &h, Words) { return statusOf(h.encryption().phoneSignIn()); }},
    {"phone type CODE", "type a pairing code on the phone",
     [](Home &h, Words a) { return statusOf(h.encryption().type(QString(a[0]).remove(u' '))); }},
    {"phone type-right", "type the code that the Mac shows",
     [](Home &h, Words) { return statusOf(h.encryption().typeRight()); }},
    {"pair-code", "print the code that the Mac shows", [](Home &h, Words) { return given(h.encryption().pairCode()); }},
    {"device ask NAME PLATFORM", "a device requests to join; print its id and the code that it shows",
     [](Home &h, Words a) { return requestJoin(h, a[0], a[1]); }},
    {"alarm TEXT", "raise a security alarm; print its id",
     [](Home &h, Words a) { return given(h.encryption().raiseAlarm(a[0])); }},
    {"reset-alarm", "raise the alarm of an encryption reset; print its id",
     [](Home &h, Words) { return given(h.encryption().raiseResetAlarm()); }},
    {"permission", "print each of the agent's permissions with its state",
     [](Home &h, Words) { return permissions(h); }},
    {"permission grant NAME", "turn one on in System Settings, or allow it when the system asks for it",
     [](Home &h, Words a) { return statusOf(h.permissions().grant(a[0])); }},
    {"permission revoke NAME", "turn one off, or refuse it",
     [](Home &h, Words a) { return statusOf(h.permissions().revoke(a[0])); }},
    {"permission set NAME STATE", "granted, denied, undetermined, notrunning, or one that begins with \"unknown\"",
     [](Home &h, Words a) { return statusOf(h.permissions().setState(a[0], a[1])); }},
    {"account-server start", "start the account server and print its address",
     [](Home &h, Words) { return h.startAccountServer() ? given(h.accountServer()) : 1; }},
    {"account-server stop", "end it", [](Home &h, Words) { return statusOf(h.stopAccountServer()); }},
    {"account credentials", "print the good credentials of Macs: agent id, account, name of the Mac",
     [](Home &h, Words) { return credentials(h); }},
    {"account release AGENTID", "end one", [](Home &h, Words a) { return statusOf(h.accounts().release(a[0])); }},
    {"account code PHONE", "print the last code sent to a phone",
     [](Home &h, Words a) { return given(h.accounts().lastCode(a[0])); }},
    {"browser-sign-in approve NAME", "the newest sign-in in the browser succeeds",
     [](Home &h, Words a) { return statusOf(h.accounts().endSignIn(h.accounts().newestSignIn(), u"done"_s, a[0])); }},
    {"update publish VERSION", "offer that version",
     [](Home &h, Words a) {
         return statusOf(h.changeScenario({{u"update"_s, QJsonObject{{u"ver"_s, a[0]}}}}));
     }},
};

/// The arguments of a command line; none if `verb` does not match.
std::optional<QStringList> argumentsOf(const Verb &verb, const QStringList &line) {
    QStringList arguments;
    qsizetype at = 0;
    for (const QString &word : QString::fromLatin1(verb.usage).split(u' ')) {
        const bool optional = word.startsWith(u'['), isArgument = optional || word.at(0).isUpper();
        if (word == "..."_L1)
            return arguments + line.mid(at);
        if (at == line.size() && optional)
            return arguments;
        if (at == line.size() || (!isArgument && word != line[at]))
            return std::nullopt;
        if (isArgument)
            arguments.append(line[at]);
        ++at;
    }
    return at == line.size() ? std::optional(arguments) : std::nullopt;
}

int help() {
    std::puts(
        "usage: korvel-simulator [--home DIR] COMMAND\n\n"
        "Drives the simulated Mac of a home directory: $HOME, or DIR. Exit status 1: the state of the Mac does not\n"
        "allow it. docs/simulator.md lists what a scenario can hold.\n");
    for (const Verb &verb : VERBS)
        std::printf("  %-28s %s\n", verb.usage, verb.help);
    return 0;
}

} // namespace

int control(const ProgramCall &call) {
    QStringList line = call.arguments;
    QString directory = call.paths.home;
    if (line.size() >= 2 && line[0] == "--home"_L1) {
        directory = line[1];
        line.remove(0, 2);
    }
    if (line == QStringList{u"--help"_s})
        return help();
    Home home(directory);
    for (const Verb &verb : VERBS)
        if (const auto arguments = argumentsOf(verb, line))
            return verb.run(home, *arguments);
    std::fputs("korvel-simulator: see korvel-simulator --help\n", stderr);
    return USAGE;
}

} // namespace korvel::sim
