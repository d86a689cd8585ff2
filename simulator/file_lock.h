#pragma once

#include <QFile>

namespace korvel::sim {

// Holds a file's lock (flock(2)) until its end, waiting for it first; creates the file. Its folder must exist.
class FileLock {
public:
    explicit FileLock(const QString &path);
    bool isHeld() const { return held; }

private:
    QFile file;
    bool held;
};

} // namespace korvel::sim
