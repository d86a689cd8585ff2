#include "platform/linux/running_instances_linux.h"

#include "app/model/automation.h"
#include "base/private_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

/// Process name (not program name) of an instance that finished its turn; at most 15 characters.
constexpr char ESTABLISHED[] = "Korvel";
constexpr auto TURN_TIMEOUT = std::chrono::seconds(5); // after that, ignores an instance that hangs in its turn

/// The properties that identify a process as another instance of this program.
struct Instance {
    qint64 pid = 0;
    QString name;
    bool established = false;
    std::optional<QString> home;
    QStringList arguments;
    std::optional<QString> automation;
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
        parts.removeLast(); // text after the last zero byte
    return parts;
}

std::optional<QString> variable(const QStringList &environment, const QString &name) {
    for (const QString &entry : environment)
        if (entry.startsWith(name + u'='))
            return entry.sliced(name.size() + 1);
    return std::nullopt;
}

/// Reads a process from /proc; none if it belongs to another user or has ended.
std::optional<Instance> inspect(qint64 pid) {
    struct stat info {};
    const QString folder = u"/proc/%1"_s.arg(pid);
    if (::stat(QFile::encodeName(folder).constData(), &info) != 0 || info.st_uid != ::getuid())
        return std::nullopt;
    QString program = QFile::symLinkTarget(folder + u"/exe"_s);
    if (program.endsWith(u" (deleted)"_s)) // the file was replaced while it runs, as by an update
        program.chop(10);
    const QStringList environment = zeroSeparated(procFile(pid, u"environ"_s));
    if (program.isEmpty()) // also true for a zombie process
        return std::nullopt;
    return Instance{.pid = pid,
                    .name = QFileInfo(program).fileName(),
                    .established = procFile(pid, u"comm"_s).trimmed() == ESTABLISHED,
                    .home = variable(environment, u"HOME"_s),
                    .arguments = zeroSeparated(procFile(pid, u"cmdline"_s)),
                    .automation = variable(environment, u"KORVEL_TRAY_AUTOMATION"_s)};
}

} // namespace

RunningInstancesLinux::~RunningInstancesLinux() {
    if (hadTurn)
        ::prctl(PR_SET_NAME, ESTABLISHED); // before releasing the turn
    if (turn >= 0)
        ::close(turn);
    for (const auto &[pid, descriptor] : descriptors)
        ::close(descriptor);
}

void RunningInstancesLinux::takeTurn() {
    hadTurn = true;
    makePrivateFolder(QFileInfo(turnFile).path());
    turn = ::open(QFile::encodeName(turnFile).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    const auto deadline = std::chrono::steady_clock::now() + TURN_TIMEOUT;
    // Without a lock, instances that start at the same time may all stay. That is better than none.
    while (turn >= 0 && ::flock(turn, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK &&
           std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

QList<qint64> RunningInstancesLinux::others() {
    takeTurn();
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
        const auto instance = inspect(pid);
        if (instance && instance->name == self->name && instance->home == self->home && instance->established &&
            !automationMode(instance->arguments, instance->automation)) {
            descriptors.emplace(pid, descriptor);
            found.append(pid);
        } else {
            ::close(descriptor);
        }
    }
    return found;
}

void RunningInstancesLinux::terminate(qint64 instance) {
    ::syscall(SYS_pidfd_send_signal, descriptors.at(instance), SIGTERM, nullptr, 0);
}

void RunningInstancesLinux::forceTerminate(qint64 instance) {
    ::syscall(SYS_pidfd_send_signal, descriptors.at(instance), SIGKILL, nullptr, 0);
}

bool RunningInstancesLinux::isTerminated(qint64 instance) {
    pollfd descriptor{.fd = descriptors.at(instance), .events = POLLIN, .revents = 0};
    return ::poll(&descriptor, 1, 0) > 0;
}

} // namespace korvel
