#pragma once

#include "ports/programs.h"

namespace korvel {

/// Programs through QProcess. With a simulated root, macOS tools run only from that root.
class QtPrograms final : public Programs {
public:
    explicit QtPrograms(QString root) : simulatedRoot(std::move(root)) {}
    ProgramResult run(const ProgramRun &request) override;

private:
    const QString simulatedRoot;
};

} // namespace korvel
