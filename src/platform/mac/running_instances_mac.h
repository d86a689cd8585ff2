#pragma once

#include "platform/mac/native_instances_mac.h"
#include "ports/running_instances.h"

#include <map>

namespace korvel {

/// Instances known by the bundle identifier. The system lists those of this login session only, and starts one instance
/// a bundle at a time; a run without windows, as in the automation modes, is none of its applications.
class RunningInstancesMac final : public RunningInstances {
public:
    RunningInstancesMac();

    QList<qint64> others() override;
    void terminate(qint64 instance) override;
    bool isTerminated(qint64 instance) override;
    void forceTerminate(qint64 instance) override;

private:
    native::RunningApplications applications;
    std::map<qint64, std::size_t> places; ///< Process identifier to place among the applications.
};

} // namespace korvel
