#include "simulator/install_tools.h"

#include "simulator/file_lock.h"
#include "simulator/files.h"
#include "simulator/scenario.h"
#include "simulator/tool_fault.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <optional>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const QByteArray PACKAGE_MARK = "korvel-package ";
const QByteArray SWAPPED_PACKAGE = PACKAGE_MARK + "6.6.6\nput there by somebody else\n";
constexpr qint64 LONGEST_FIRST_LINE = 200;

// In lower-case hexadecimal; nothing when the file cannot be read.
std::optional<QString> sha256Of(const QString &path) {
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return std::nullopt;
    return QString::fromLatin1(hash.result().toHex());
}

// Empty for what is no package.
QString versionOf(const QString &package) {
    QFile file(package);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = file.readLine(LONGEST_FIRST_LINE);
    return line.startsWith(PACKAGE_MARK) ? QString::fromUtf8(line.mid(PACKAGE_MARK.size())).trimmed() : QString();
}

QJsonArray recorded(const HomePaths &paths) {
    return readObject(paths.installed()).value_or(QJsonObject{}).value("packages"_L1).toArray();
}

bool record(const HomePaths &paths, const QJsonObject &package) {
    const FileLock lock(paths.installed() + ".lock"_L1);
    QJsonArray packages = recorded(paths);
    packages.append(package);
    return lock.isHeld() &&
           replaceFile(paths.installed(), QJsonDocument(QJsonObject{{u"packages"_s, packages}}).toJson());
}

} // namespace

ProgramResult xattr(const ProgramCall &call) {
    const QStringList &arguments = call.arguments;
    if (arguments.size() != 3 || arguments[0] != "-d"_L1)
        return {1, {}, u"usage: xattr -d NAME FILE\n"_s};
    if (!QFile::exists(arguments[2]))
        return {1, {}, u"xattr: No such file: %1\n"_s.arg(arguments[2])};
    return {};
}

ProgramResult cp(const ProgramCall &call) {
    if (call.arguments.size() != 2)
        return {64, {}, u"usage: cp SOURCE TARGET\n"_s};
    if (const auto fault = toolFault(call.paths, "install"_L1, u"cp"_s))
        return *fault;
    const QString moment = Scenario::read(call.paths).section("install"_L1).value("swapBefore"_L1).toString();
    if (moment == "copy"_L1)
        replaceFile(call.arguments[0], SWAPPED_PACKAGE);
    const int status = runProgram(u"/bin/cp"_s, call.arguments);
    if (moment == "check"_L1)
        replaceFile(call.arguments[0], SWAPPED_PACKAGE);
    return {status};
}

ProgramResult shasum(const ProgramCall &call) {
    const QStringList &arguments = call.arguments;
    if (arguments.size() != 3 || arguments[0] != "-a"_L1 || arguments[1] != "256"_L1)
        return {64, {}, u"usage: shasum -a 256 FILE\n"_s};
    const auto hash = sha256Of(arguments[2]);
    if (!hash)
        return {1, {}, u"shasum: %1: cannot be read\n"_s.arg(arguments[2])};
    return {0, *hash + u"  "_s + arguments[2] + u'\n'};
}

ProgramResult installer(const ProgramCall &call) {
    const QStringList &arguments = call.arguments;
    if (arguments.size() != 4 || arguments[0] != "-pkg"_L1 || arguments[2] != "-target"_L1 || arguments[3] != "/"_L1)
        return {64, {}, u"usage: installer -pkg FILE -target /\n"_s};
    if (const auto fault = toolFault(call.paths, "install"_L1, u"installer"_s))
        return *fault;
    const QString version = versionOf(arguments[1]);
    const auto hash = sha256Of(arguments[1]);
    if (version.isEmpty() || !hash)
        return {1, {}, u"installer: Error the package path specified was invalid: '%1'.\n"_s.arg(arguments[1])};
    if (!record(call.paths, {{u"time"_s, timeNow()}, {u"version"_s, version}, {u"sha256"_s, *hash}}))
        return {1, {}, u"installer: The install failed.\n"_s};
    return {0, u"installer: The install was successful.\n"_s};
}

QList<QJsonObject> installedPackages(const HomePaths &paths) {
    QList<QJsonObject> packages;
    for (const QJsonValue &package : recorded(paths))
        packages.append(package.toObject());
    return packages;
}

} // namespace korvel::sim
