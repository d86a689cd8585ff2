#include "simulator/program_call.h"

#include <QProcess>
#include <QThread>

namespace korvel::sim {

int runProgram(const QString &program, const QStringList &arguments) {
    const int status = QProcess::execute(program, arguments);
    return status < 0 ? 127 : status;
}

void pauseFor(int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }

} // namespace korvel::sim
