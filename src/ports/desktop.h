#pragma once

#include <QList>
#include <QString>

namespace korvel {

struct EditMenuItem;

/// What the tray asks of the desktop session around it.
class Desktop {
public:
    virtual ~Desktop() = default;
    /// Opens a web address, a file address or a settings pane with its default program.
    virtual void openUrl(const QString &url) = 0;
    /// Whether the Option (Alt) key is held at this moment.
    virtual bool optionKeyHeld() const = 0;
    /// The name that the user gave this computer; its host name where there is none.
    virtual QString computerName() const = 0;
    /// Makes the standard editing keys work in the tray's windows; the menu itself is never seen.
    virtual void installEditMenu(const QList<EditMenuItem> &items) = 0;
    /// Leaves the event loop with exit status 0.
    virtual void terminate() = 0;
};

} // namespace korvel
