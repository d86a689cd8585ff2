#include "update/install_script.h"

#include "app/model/wording.h"
#include "ports/system_tools.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr int USER_CANCELLED = -128; // AppleScript's error number
constexpr int OTHER_HASH = 72;       // of the script, see installScript()

QString quoted(QString path) { return u'\'' + path.replace(u'\'', u"'\\''"_s) + u'\''; }

/// The script's exit status: the number in brackets at the end of the error text.
std::optional<int> innerStatus(const QString &error) {
    static const QRegularExpression NUMBER(u"\\((-?[0-9]+)\\)\\s*$"_s);
    const auto match = NUMBER.match(error);
    return match.hasMatch() ? std::optional(match.captured(1).toInt()) : std::nullopt;
}

} // namespace

QString installScript(const QString &package, const QString &sha) {
    return u"d=$(/usr/bin/mktemp -d /private/tmp/korvel-update.XXXXXX) || exit 70; "_s + u"/bin/cp "_s +
           quoted(package) + u" \"$d/Korvel.pkg\" || { /bin/rm -rf \"$d\"; exit 71; }; "_s +
           u"[ \"$(/usr/bin/shasum -a 256 \"$d/Korvel.pkg\" | /usr/bin/awk '{print $1}')\" = \""_s + sha +
           u"\" ] || { /bin/rm -rf \"$d\"; exit 72; }; "_s +
           u"/usr/sbin/installer -pkg \"$d/Korvel.pkg\" -target /; rc=$?; /bin/rm -rf \"$d\"; exit $rc"_s;
}

ProgramRun buildInstall(const QString &package, const UpdateInfo &info) {
    const QString prompt = L(u"Korvel 需要安装更新 ", u"Korvel wants to install update ") + info.ver + u'.';
    return {.executable = OSASCRIPT,
            .arguments = {u"-e"_s, u"on run argv"_s, u"-e"_s,
                          u"do shell script (item 1 of argv) with prompt (item 2 of argv) with administrator "
                          "privileges"_s,
                          u"-e"_s, u"end run"_s, installScript(package, info.sha), prompt},
            .surroundings = ProgramRun::Surroundings::Own};
}

InstallOutcome installOutcome(const ProgramResult &result) {
    if (result.status == 0)
        return InstallOutcome::Installed;
    if (result.end == ProgramResult::End::Stopped)
        return InstallOutcome::Cancelled;
    const QString error = QString::fromUtf8(result.output);
    const std::optional<int> status = innerStatus(error);
    if (status == USER_CANCELLED || error.contains(u"cancel", Qt::CaseInsensitive))
        return InstallOutcome::Cancelled;
    return status == OTHER_HASH ? InstallOutcome::Modified : InstallOutcome::Failed;
}

} // namespace korvel
