#include "platform/running_copies_linux.h"

#include "app/automation.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <tuple>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr char STARTING[] = "korvel-starting"; // at most 15 characters
constexpr char RUNNING[] = "korvel-tray";

/// What of a process decides whether it is another copy of this program.
struct Copy {
    qint64 pid = 0;
    quint64 startedAt = 0; ///< Ticks since boot.
    QString name;
    bool starting = false;
    std::optional<QString> home;
    QStringList arguments;
    std::optional<QString> automation;

    /// Whether this starting copy ends `o`. A process keeps its start time when it becomes another program.
    bool replaces(const Copy &o) const {
        return !o.starting || std::tie(o.startedAt, o.pid) < std::tie(startedAt, pid);
    }
};

QByteArray procFile(qint64 pid, const QString &name) {
    QFile file(u"/proc/%1/%2"_s.arg(pid).arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList zeroSeparated(const QByteArray &bytes) {
    QStringList parts;
    for (const QByteArray &part : bytes.split('\0'))
        parts.append(QFile::decodeName(part));
    if (!parts.isEmpty())
        parts.removeLast(); // behind the last zero
    return parts;
}

std::optional<QString> variable(const QStringList &environment, const QString &name) {
    for (const QString &entry : environment)
        if (entry.startsWith(name + u'='))
            return entry.sliced(name.size() + 1);
    return std::nullopt;
}

/// The process's program, arguments and environment; none for another user's process or one that is gone.
std::optional<Copy> inspect(qint64 pid) {
    struct stat info {};
    const QString folder = u"/proc/%1"_s.arg(pid);
    if (::stat(QFile::encodeName(folder).constData(), &info) != 0 || info.st_uid != ::getuid())
        return std::nullopt;
    QString program = QFile::symLinkTarget(folder + u"/exe"_s);
    if (program.endsWith(u" (deleted)"_s)) // replaced while it runs, as by an update
        program.chop(10);
    // The name in brackets may hold blanks and brackets itself.
    const QByteArray stat = procFile(pid, u"stat"_s);
    const QList<QByteArray> fields = stat.sliced(stat.lastIndexOf(')') + 1).simplified().split(' ');
    const QStringList environment = zeroSeparated(procFile(pid, u"environ"_s));
    if (program.isEmpty() || fields.size() < 20 || fields.first() == "Z")
        return std::nullopt;
    return Copy{.pid = pid,
                .startedAt = fields.at(19).toULongLong(),
                .name = QFileInfo(program).fileName(),
                .starting = procFile(pid, u"comm"_s).trimmed() == STARTING,
                .home = variable(environment, u"HOME"_s),
                .arguments = zeroSeparated(procFile(pid, u"cmdline"_s)),
                .automation = variable(environment, u"KORVEL_TRAY_AUTOMATION"_s)};
}

} // namespace

RunningCopiesLinux::RunningCopiesLinux() { ::prctl(PR_SET_NAME, STARTING); }

RunningCopiesLinux::~RunningCopiesLinux() {
    ::prctl(PR_SET_NAME, RUNNING);
    for (const auto &[pid, descriptor] : descriptors)
        ::close(descriptor);
}

QList<qint64> RunningCopiesLinux::others() {
    QList<qint64> found;
    const auto self = inspect(::getpid());
    if (!self)
        return found;
    const QStringList names = QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : names) {
        bool isPid = false;
        const qint64 pid = entry.toLongLong(&isPid);
        if (!isPid || pid == self->pid || descriptors.contains(pid))
            continue;
        const int descriptor = static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0));
        if (descriptor < 0)
            continue;
        const auto copy = inspect(pid);
        if (copy && copy->name == self->name && copy->home == self->home && self->replaces(*copy) &&
            !automationMode(copy->arguments, copy->automation)) {
            descriptors.emplace(pid, descriptor);
            found.append(pid);
        } else {
            ::close(descriptor);
        }
    }
    return found;
}

void RunningCopiesLinux::terminate(qint64 copy) {
    ::syscall(SYS_pidfd_send_signal, descriptors.at(copy), SIGTERM, nullptr, 0);
}

void RunningCopiesLinux::forceTerminate(qint64 copy) {
    ::syscall(SYS_pidfd_send_signal, descriptors.at(copy), SIGKILL, nullptr, 0);
}

bool RunningCopiesLinux::isTerminated(qint64 copy) {
    pollfd descriptor{.fd = descriptors.at(copy), .events = POLLIN, .revents = 0};
    return ::poll(&descriptor, 1, 0) > 0;
}

} // namespace korvel
