#include "simulator/gallery/layout_faults.h"
#include "simulator/gallery/shown_texts.h"
#include "simulator/gallery/stage.h"

#include <QLabel>
#include <QMap>
#include <QPushButton>
#include <QSet>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace korvel::gallery;

namespace korvel::test {
namespace {

TEST(Gallery, NothingIsCutOffOverlapsOrLeavesItsWindow) {
    QSet<QString> names;
    for (const Setting &setting : allSettings()) {
        apply(setting);
        for (const Case &shown : allCases()) {
            if (!settingsOf(shown).contains(setting))
                continue;
            const QString name = shown.group + u'/' + shown.name + u' ' + differencesOf(shown, setting).join(u' ');
            EXPECT_FALSE(names.contains(name)) << name.toStdString();
            names.insert(name);
            const Staged staged(shown);
            ASSERT_NE(staged.window(), nullptr) << name.toStdString();
            EXPECT_EQ(layoutFaults(*staged.window()).join(u"; "_s).toStdString(), "") << name.toStdString();
        }
    }
}

/// The faults of a window with a label and a button at these places.
QString faultsOf(QRect label, QRect button) {
    QWidget window;
    window.setGeometry(100, 100, 300, 100);
    QLabel text(u"A text of some length"_s, &window);
    text.setGeometry(label);
    QPushButton ok(u"OK"_s, &window);
    ok.setGeometry(button);
    window.show();
    return layoutFaults(window).join(u"; "_s);
}

TEST(Gallery, EachKindOfFaultIsSeen) {
    const QRect label(10, 10, 280, 30), button(10, 50, 120, 40);
    EXPECT_EQ(faultsOf(label, button), QString());
    EXPECT_TRUE(faultsOf(label.adjusted(0, 0, -240, 0), button).contains(u"is cut off"_s));
    EXPECT_TRUE(faultsOf(label, button.adjusted(0, 0, 0, -35)).contains(u"is cut off"_s));
    EXPECT_TRUE(faultsOf(label, button.translated(0, -20)).contains(u"overlaps"_s));
    EXPECT_TRUE(faultsOf(label, button.translated(200, 0)).contains(u"leaves the window"_s));
}

/// What each case says in a language, by its name.
QMap<QString, QString> textsIn(bool chinese) {
    apply({.chinese = chinese});
    QMap<QString, QString> texts;
    for (const Case &shown : allCases()) {
        const Staged staged(shown);
        if (shown.differs != Differs::InNothing && staged.window())
            texts[shown.group + u'/' + shown.name] = shownTexts(*staged.window()).join(u'\n');
    }
    return texts;
}

TEST(GalleryTexts, BothLanguagesSayTheSame) {
    const auto english = textsIn(false), chinese = textsIn(true);
    EXPECT_EQ(english.keys(), chinese.keys());
    for (const QString &name : english.keys())
        EXPECT_EQ(languageFaults(english[name], chinese.value(name)).join(u"; "_s).toStdString(), "")
            << name.toStdString();
}

TEST(GalleryTexts, EachKindOfDifferenceIsSeen) {
    const QString chinese = u"● 已连接 Anna’s phone 482 913"_s;
    EXPECT_TRUE(languageFaults(u"● Connected Anna’s phone 482 913"_s, chinese).isEmpty());
    for (const QString &english : {u"● Connected 到 Anna’s phone 482 913"_s, u"○ Connected Anna’s phone 482 913"_s,
                                   u"● Connected Anna’s phone 482 914"_s, u"● Connected Büro Anna’s phone 482 913"_s,
                                   u"● Connected Anna 482 913"_s})
        EXPECT_FALSE(languageFaults(english, chinese).isEmpty()) << english.toStdString();
    EXPECT_FALSE(languageFaults(u"Connected"_s, u"Connected"_s).isEmpty());
    EXPECT_FALSE(languageFaults(u"Try again"_s, u"请重试 Try again"_s).isEmpty());
}

} // namespace
} // namespace korvel::test
