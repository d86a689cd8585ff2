#pragma once

#include "platform/mac/native_instances_mac.h"
#include "ports/running_instances.h"

#include <map>

namespace korvel {

/// Instances with the same bundle identifier. The system lists this login session only and starts one instance of a
/// bundle at a time. Runs without windows, such as automation modes, are not listed.
class RunningInstancesMac final : public RunningInstances {
public:
    RunningInstancesMac();

    QList<qint64> others() override;
    void terminate(qint64 instance) override;
    bool isTerminated(qint64 instance) override;
    void forceTerminate(qint64 instance) override;

private:
    native::RunningApplications applications;
    std::map<qint64, std::size_t> places; ///< Process identifier to index among the applications.
};

} // namespace korvel
