#pragma once

#include "ports/programs.h"
#include "ports/service_control.h"

namespace korvel {

/// ServiceControl through the launchctl program, in the user's GUI domain.
class Launchctl final : public ServiceControl {
public:
    Launchctl(Programs &p, quint32 uid) : programs(p), domain(QStringLiteral("gui/%1").arg(uid)) {}

    ServiceResult print(const QString &label) override;
    ServiceResult bootstrap(const QString &jobFile) override;
    ServiceResult bootout(const QString &label) override;
    ServiceResult enable(const QString &label) override;
    ServiceResult disable(const QString &label) override;
    ServiceResult kickstart(const QString &label) override;

private:
    ServiceResult launchctl(const QStringList &arguments);
    QString target(const QString &label) const { return domain + u'/' + label; }

    Programs &programs;
    const QString domain;
};

} // namespace korvel
