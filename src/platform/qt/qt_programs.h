#pragma once

#include "ports/programs.h"

namespace korvel {

/// Programs through QProcess. With a stand-in root, macOS tools run only from that root.
class QtPrograms final : public Programs {
public:
    explicit QtPrograms(QString root) : standInRoot(std::move(root)) {}
    ProgramResult run(const ProgramRun &request) override;

private:
    const QString standInRoot;
};

} // namespace korvel
