#include "simulator/gallery/stage.h"
#include "simulator/gallery/window_faults.h"

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

TEST(Gallery, EachKindOfFaultIsFound) {
    QWidget window;
    window.setGeometry(100, 100, 300, 100);
    QLabel label(u"A text of some length"_s, &window);
    QPushButton button(u"OK"_s, &window);
    window.show();
    const auto faults = [&](const QRect &ofLabel, const QRect &ofButton) {
        label.setGeometry(ofLabel);
        button.setGeometry(ofButton);
        return layoutFaults(window).join(u"; "_s);
    };
    const QRect above(10, 10, 280, 30), below(10, 50, 120, 40);
    EXPECT_EQ(faults(above, below), QString());
    EXPECT_TRUE(faults({10, 10, 40, 30}, below).contains(u"is cut off"_s));
    EXPECT_TRUE(faults(above, {10, 30, 120, 40}).contains(u"overlaps"_s));
    EXPECT_TRUE(faults(above, {210, 50, 120, 40}).contains(u"leaves the window"_s));
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

TEST(GalleryTexts, EachKindOfDifferenceIsFound) {
    const QString chinese = u"● 已连接 Anna’s phone 482 913"_s;
    EXPECT_TRUE(languageFaults(u"● Connected Anna’s phone 482 913"_s, chinese).isEmpty());
    for (const QString &english : {u"● Connected 到 Anna’s phone 482 913"_s, u"○ Connected Anna’s phone 482 913"_s,
                                   u"● Connected Anna’s phone 482 914"_s, u"● Connected Anna 482 913"_s, chinese})
        EXPECT_FALSE(languageFaults(english, chinese).isEmpty()) << english.toStdString();
    EXPECT_FALSE(languageFaults(u"Try again"_s, u"请重试 Try again"_s).isEmpty());
}

} // namespace
} // namespace korvel::test
