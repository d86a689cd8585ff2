#include "service/login_item.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {
QString escaped(QString text) {
    return text.replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s).replace(u'>', u"&gt;"_s);
}
} // namespace

QString loginItemText(const QString &executablePath, const QString &logPath) {
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           u"<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           u"\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           u"<plist version=\"1.0\"><dict>\n"
           u"  <key>Label</key><string>com.korvel.tray</string>\n"
           u"  <key>ProgramArguments</key><array><string>"_s +
           escaped(executablePath) +
           u"</string></array>\n"
           u"  <key>RunAtLoad</key><true/>\n"
           u"  <key>StandardErrorPath</key><string>"_s +
           escaped(logPath) +
           u"</string>\n"
           u"</dict></plist>\n"_s;
}

bool isInstalledProgram(const QString &executablePath) { return executablePath.startsWith(u"/Applications/"); }

void ensureTrayLoginItem(const Paths &paths, const QString &executablePath) {
    if (QFileInfo::exists(paths.trayPlist) || !isInstalledProgram(executablePath))
        return;
    QDir().mkpath(QFileInfo(paths.trayPlist).absolutePath());
    QFile file(paths.trayPlist);
    // A half-written job file would never be repaired, because an existing file is never changed.
    const QByteArray text = loginItemText(executablePath, paths.trayLog).toUtf8();
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return;
    const bool whole = file.write(text) == text.size() && file.flush();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    file.close();
    if (!whole)
        file.remove();
}

} // namespace korvel
