#pragma once

#include "ports/desktop.h"
#include "ports/programs.h"

namespace korvel {

/// The desktop session through Qt. With a simulated root, addresses are opened by the program under that root.
class DesktopQt : public Desktop {
public:
    DesktopQt(Programs &p, bool simulated) : programs(p), hasSimulatedTools(simulated) {}

    void openUrl(const QString &url) override;
    bool optionKeyHeld() const override;
    QString computerName() const override;
    /// No action: without a native main menu, Qt's text fields handle the editing keys themselves.
    void installEditMenu(const QList<EditMenuItem> &items) override;
    void terminate() override;

private:
    Programs &programs;
    const bool hasSimulatedTools;
};

} // namespace korvel
