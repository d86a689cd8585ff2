#pragma once

#include "platform/qt/desktop_qt.h"

namespace korvel {

/// The desktop session of a Mac. Uses the system where Qt has no equivalent.
class DesktopMac final : public DesktopQt {
public:
    using DesktopQt::DesktopQt;

    bool optionKeyHeld() const override;
    QString computerName() const override;
    void installEditMenu(const QList<EditMenuItem> &items) override;
};

} // namespace korvel
