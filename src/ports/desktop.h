#pragma once

#include <QList>
#include <QString>

namespace korvel {

struct EditMenuItem;

/// The desktop session.
class Desktop {
public:
    virtual ~Desktop() = default;
    /// Opens a web address, file address or settings pane with its default program.
    virtual void openUrl(const QString &url) = 0;
    /// Whether the Option (Alt) key is currently held.
    virtual bool optionKeyHeld() const = 0;
    /// The user-visible name of this computer; the host name if there is none.
    virtual QString computerName() const = 0;
    /// Enables the standard editing keys in the tray's windows. The menu itself is never visible.
    virtual void installEditMenu(const QList<EditMenuItem> &items) = 0;
    /// Exits the event loop with status 0.
    virtual void terminate() = 0;
};

} // namespace korvel
