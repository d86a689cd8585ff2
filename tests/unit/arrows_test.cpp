#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

const QString SOURCES = QStringLiteral(KORVEL_SOURCE_FOLDER);

QString content(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList includesOf(const QString &path) {
    static const QRegularExpression INCLUDE(u"^\\s*#\\s*include\\s*[<\"]([^>\"]+)"_s,
                                            QRegularExpression::MultilineOption);
    QStringList names;
    const QString text = content(path);
    for (auto it = INCLUDE.globalMatch(text); it.hasNext();)
        names.append(it.next().captured(1));
    return names;
}

/// The sources of a target, as its CMakeLists.txt lists them, without their ending.
QSet<QString> sourcesOf(const QString &target) {
    const QString lists = content(SOURCES + u"/CMakeLists.txt"_s);
    QSet<QString> sources;
    const QRegularExpression block(
        u"(?:add_library|target_sources)\\(%1 (?:STATIC|OBJECT|PRIVATE)([^)]*)\\)"_s.arg(target));
    for (auto it = block.globalMatch(lists); it.hasNext();)
        for (const QString &name : it.next().captured(1).simplified().split(u' '))
            for (const QString &system : {u"linux"_s, u"mac"_s})
                sources.insert(QString(name).replace(u"${KORVEL_SYSTEM}"_s, system).section(u'.', 0, 0));
    return sources;
}

/// What is wrong with the includes of one file; empty when they follow the arrows.
QString violation(const QString &file, const QStringList &includes, const QRegularExpression &forbidden) {
    for (const QString &name : includes)
        if (forbidden.match(name).hasMatch())
            return file + u" includes "_s + name;
    return {};
}

/// A feature is known by the class that takes hooks.
QMap<QString, QString> featureHeaders() {
    QMap<QString, QString> features;
    for (QDirIterator it(SOURCES, {u"*.h"_s}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString path = it.next();
        if (content(path).contains(u"struct Hooks {"_s))
            features.insert(QDir(SOURCES).relativeFilePath(path), QFileInfo(path).completeBaseName());
    }
    return features;
}

TEST(Arrows, RulesAndFeaturesKnowNoWidgetNoSocketAndNoBus) {
    const QSet<QString> core = sourcesOf(u"korvel_core"_s);
    ASSERT_GT(core.size(), 20);
    const QSet<QString> above = sourcesOf(u"korvel_ui"_s) + sourcesOf(u"korvel_platform"_s);
    ASSERT_GT(above.size(), 10);
    static const QRegularExpression TOOLKIT(
        u"^(curl/|openssl/|sys/"
        u"socket|Q(Widget|Application|GuiApplication|Menu|Action|Label|Icon|Pixmap|Painter|Font|DBus|"
        "Network|Tcp|Process|Timer|SocketNotifier|SystemTray))"_s);
    for (const QString &source : core)
        for (const QString &file : {source + u".h"_s, source + u".cpp"_s}) {
            const QStringList includes = includesOf(SOURCES + u'/' + file);
            EXPECT_EQ(violation(file, includes, TOOLKIT).toStdString(), "");
            for (const QString &name : includes)
                EXPECT_FALSE(above.contains(name.section(u'.', 0, 0))) << (file + u" includes "_s + name).toStdString();
        }
}

TEST(Arrows, WidgetsKnowNoPlatformImplementationAndNoFeature) {
    const QSet<QString> platform = sourcesOf(u"korvel_platform"_s);
    const auto features = featureHeaders();
    for (const QString &source : sourcesOf(u"korvel_ui"_s))
        for (const QString &file : {source + u".h"_s, source + u".cpp"_s})
            for (const QString &name : includesOf(SOURCES + u'/' + file))
                EXPECT_FALSE(platform.contains(name.section(u'.', 0, 0)) || features.contains(name))
                    << (file + u" includes "_s + name).toStdString();
}

TEST(Arrows, FeaturesDoNotIncludeEachOther) {
    const auto features = featureHeaders();
    ASSERT_GE(features.size(), 4);
    for (auto it = features.begin(); it != features.end(); ++it)
        for (const QString &ending : {u".h"_s, u".cpp"_s}) {
            const QString file = it.key().chopped(2) + ending;
            for (const QString &name : includesOf(SOURCES + u'/' + file))
                EXPECT_FALSE(name != it.key() && features.contains(name))
                    << (file + u" includes "_s + name).toStdString();
        }
}

TEST(Arrows, SharedCodeHasNoSystemSwitches) {
    for (QDirIterator it(SOURCES, {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString path = it.next();
        static const QRegularExpression SWITCH(u"#\\s*if.*(__APPLE__|__linux__|Q_OS_)"_s);
        EXPECT_FALSE(SWITCH.match(content(path)).hasMatch()) << path.toStdString();
    }
}

} // namespace
} // namespace korvel::test
