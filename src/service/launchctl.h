#pragma once

#include "platform/programs.h"
#include "service/service_control.h"

namespace korvel {

/// ServiceControl through the launchctl program, in the user's GUI domain.
class Launchctl final : public ServiceControl {
public:
    Launchctl(Programs &p, quint32 uid) : programs(p), domain(QStringLiteral("gui/%1").arg(uid)) {}

    bool print(const QString &label) override;
    bool bootstrap(const QString &jobFile) override;
    bool bootout(const QString &label) override;
    bool enable(const QString &label) override;
    bool disable(const QString &label) override;
    bool kickstart(const QString &label) override;

private:
    bool launchctl(const QStringList &arguments);
    QString target(const QString &label) const { return domain + u'/' + label; }

    Programs &programs;
    const QString domain;
};

} // namespace korvel
