#pragma once

#include "platform/mac/native_copies_mac.h"
#include "ports/running_copies.h"

#include <map>

namespace korvel {

/// Copies known by the bundle identifier. The system lists those of this login session only, and starts one copy a
/// bundle at a time; a run without windows, as in the automation modes, is none of its applications.
class RunningCopiesMac final : public RunningCopies {
public:
    RunningCopiesMac();

    QList<qint64> others() override;
    void terminate(qint64 copy) override;
    bool isTerminated(qint64 copy) override;
    void forceTerminate(qint64 copy) override;

private:
    native::RunningApplications applications;
    std::map<qint64, std::size_t> places; ///< Process identifier to place among the applications.
};

} // namespace korvel
