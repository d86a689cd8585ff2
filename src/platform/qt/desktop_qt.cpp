#include "platform/qt/desktop_qt.h"

#include "base/log.h"
#include "ports/system_tools.h"
#include "ui/views/edit_menu.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QSysInfo>
#include <QUrl>

namespace korvel {

void DesktopQt::openUrl(const QString &address) {
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty())
        return;
    if (hasSimulatedTools)
        programs.run({.executable = OPEN, .arguments = {address}, .timeout = SHORT_TOOL_TIMEOUT});
    else if (!QDesktopServices::openUrl(url))
        log(QStringLiteral("[tray] nothing opens ") + url.toDisplayString());
}

bool DesktopQt::optionKeyHeld() const { return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::AltModifier); }

QString DesktopQt::computerName() const { return QSysInfo::machineHostName(); }

void DesktopQt::installEditMenu(const QList<EditMenuItem> &) {}

void DesktopQt::terminate() { QCoreApplication::exit(0); }

} // namespace korvel
