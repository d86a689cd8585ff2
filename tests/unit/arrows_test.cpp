#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

const QString SOURCES = QStringLiteral(KORVEL_SOURCE_FOLDER);

QString content(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList found(const QString &text, const QString &pattern) {
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QStringList all;
    for (auto it = expression.globalMatch(text); it.hasNext();)
        all.append(it.next().captured(1));
    return all;
}

QString stem(const QString &file) { return file.section(u'.', 0, 0); }

/// The sources of a target, as its CMakeLists.txt lists them, without their ending.
QSet<QString> sourcesOf(const QString &target) {
    const QString pattern = u"(?:add_library|target_sources)\\(%1 (?:STATIC|OBJECT|PRIVATE)([^)]*)\\)"_s.arg(target);
    QSet<QString> stems;
    for (const QString &block : found(content(SOURCES + u"/CMakeLists.txt"_s), pattern))
        for (const QString &name : found(block, u"(\\S+)\\.cpp"_s))
            stems.insert(name);
    return stems;
}

TEST(Arrows, AreFollowedByEveryInclude) {
    QMap<QString, QStringList> includes;
    QSet<QString> features; // known by the class that takes hooks
    for (QDirIterator it(SOURCES, {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString path = it.next(), name = QDir(SOURCES).relativeFilePath(path), text = content(path);
        includes[name] = found(text, u"^\\s*#\\s*include\\s*[<\"]([^>\"]+)"_s);
        if (name.endsWith(u".h") && text.contains(u"struct Hooks {"))
            features.insert(stem(name));
        EXPECT_TRUE(found(text, u"(#\\s*if.*(?:__APPLE__|__linux__|Q_OS_))"_s).isEmpty()) << path.toStdString();
    }
    const QSet<QString> core = sourcesOf(u"korvel_core"_s), ui = sourcesOf(u"korvel_ui"_s),
                        platform = sourcesOf(u"korvel_platform"_s);
    ASSERT_TRUE(core.size() > 20 && ui.size() > 5 && platform.size() > 5 && features.size() >= 4);
    const QRegularExpression toolkit(
        u"^(curl/|openssl/|sys/socket|Q(Widget|Application|GuiApplication|Menu|Action|Label|Icon|Pixmap|Painter|Font|"
        "DBus|Network|Tcp|Process|Timer|SocketNotifier|SystemTray))"_s);
    for (auto file = includes.cbegin(); file != includes.cend(); ++file)
        for (const QString &included : *file) {
            const QString from = stem(file.key()), to = stem(included);
            const bool isAbove = core.contains(from) && (ui.contains(to) || platform.contains(to));
            const bool isTool = core.contains(from) && toolkit.match(included).hasMatch();
            const bool isBeside = ui.contains(from) && (platform.contains(to) || features.contains(to));
            const bool isOtherFeature = features.contains(from) && features.contains(to) && from != to;
            EXPECT_FALSE(isAbove || isTool || isBeside || isOtherFeature)
                << (file.key() + u" includes "_s + included).toStdString();
        }
}

} // namespace
} // namespace korvel::test
