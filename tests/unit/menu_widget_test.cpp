#include "ui/menu_widget.h"

#include "support/fakes.h"
#include "ui/icon_image.h"
#include "ui/tool_tip.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct MenuWidgetTest : ::testing::Test {
    QList<Action> chosen;
    MenuWidget widget{MenuHost::Program, [this](const MenuEntry &e) { chosen.append(e.action); }};

    static MenuView view(std::initializer_list<MenuEntry> entries) { return {QList<MenuEntry>(entries)}; }
    QStringList texts() {
        QStringList list;
        for (const QAction *a : widget.menu().actions())
            list.append(a->isSeparator() ? u"---"_s : a->text());
        return list;
    }
};

const MenuEntry LINE = menuLine(u"line"_s);
const MenuEntry PAUSE = menuItem(u"Pause"_s, Action::MenuToggle, u"tip"_s);
const MenuEntry QUIT = menuItem(u"Quit"_s, Action::QuitAll);

TEST_F(MenuWidgetTest, KeepsTheActionsThatStayWhenOthersComeAndGo) {
    widget.apply(view({LINE, menuSeparator(), PAUSE, QUIT}));
    EXPECT_EQ(texts(), (QStringList{u"line"_s, u"---"_s, u"Pause"_s, u"Quit"_s}));
    const QList<QAction *> before = widget.menu().actions();

    widget.apply(view({LINE, menuItem(u"Sign In"_s, Action::BrowserLogin), menuSeparator(), PAUSE, QUIT}));
    EXPECT_EQ(texts(), (QStringList{u"line"_s, u"Sign In"_s, u"---"_s, u"Pause"_s, u"Quit"_s}));
    EXPECT_EQ(widget.menu().actions().first(), before.first());
    EXPECT_EQ(widget.menu().actions().last(), before.last());

    widget.apply(view({LINE, menuSeparator(), PAUSE, QUIT}));
    EXPECT_EQ(widget.menu().actions(), before);
    widget.apply(view({}));
    EXPECT_TRUE(texts().isEmpty());
}

TEST_F(MenuWidgetTest, TellsThePanelOnlyOfWhatChanged) {
    widget.apply(view({LINE, PAUSE, QUIT}));
    const QList<QAction *> actions = widget.menu().actions();
    QSignalSpy line(actions[0], &QAction::changed);
    QSignalSpy pause(actions[1], &QAction::changed);
    widget.apply(view({LINE, PAUSE, QUIT}));
    MenuEntry disabled = PAUSE;
    disabled.enabled = false;
    widget.apply(view({LINE, disabled, QUIT}));
    EXPECT_EQ(line.count(), 0);
    EXPECT_GE(pause.count(), 1);
    EXPECT_FALSE(actions[1]->isEnabled());
}

TEST_F(MenuWidgetTest, EntriesOfTheSameKindStayWithWhatTheyAreAbout) {
    MenuEntry first = menuItem(u"New device: a"_s, Action::E2Pending);
    first.payload = u"a"_s;
    MenuEntry second = menuItem(u"New device: b"_s, Action::E2Pending);
    second.payload = u"b"_s;
    widget.apply(view({LINE, first, second}));
    const QAction *ofSecond = widget.menu().actions().at(2);
    widget.apply(view({LINE, second}));
    EXPECT_EQ(widget.menu().actions().at(1), ofSecond);
}

TEST_F(MenuWidgetTest, AnEntryThatVanishesWhileItIsChosenStillActs) {
    widget.apply(view({LINE, PAUSE}));
    widget.menu().actions()[1]->trigger();
    widget.apply(view({LINE}));
    QCoreApplication::processEvents();
    EXPECT_EQ(chosen, QList<Action>{Action::MenuToggle});
}

TEST_F(MenuWidgetTest, TitlesFromOutsideAreShownToTheLetter) {
    EXPECT_EQ(actionText(u"a_b & c & d"_s, MenuHost::Program), u"a_b && c && d"_s);
    // In an exported menu Qt makes "_" of the first "&", and the panel takes single "_" away.
    EXPECT_EQ(actionText(u"a_b & c & d"_s, MenuHost::Panel), u"a__b && c & d"_s);
    EXPECT_EQ(menuLine(u"a\tb\r\nc"_s).title, u"a b  c"_s);
    EXPECT_EQ(menuLine(QString(5000, u'x')).title.size(), 1000);
    EXPECT_EQ(plainToolTip(u"a & b"_s), u"a & b"_s);
    EXPECT_EQ(plainToolTip(u"<b>a</b>"_s), u"<span>&lt;b&gt;a&lt;/b&gt;</span>"_s);
}

TEST_F(MenuWidgetTest, ALineIsNotWiderThanItMayBeAndNothingOfItLost) {
    const auto shownFor = [&](const MenuEntry &entry) {
        widget.apply(view({entry}));
        return widget.menu().actions().first();
    };
    MenuEntry entry = menuItem(u"⚠ Microphone · Not allowed"_s, Action::OpenPermPane, u"Without it: silence"_s);
    entry.detail = u" · Without it: silence"_s;
    EXPECT_EQ(shownFor(entry)->text(), u"⚠ Microphone · Not allowed · Without it: silence"_s);
    entry.detail = u" · Without it: "_s + QString(200, u'W');
    EXPECT_EQ(shownFor(entry)->text(), entry.title);
    EXPECT_EQ(shownFor(entry)->toolTip(), u"Without it: silence"_s);
    entry.title = u"⚠ "_s + QString(200, u'W') + u" · Not allowed"_s;
    const QAction *shortened = shownFor(entry);
    EXPECT_LE(widget.menu().fontMetrics().horizontalAdvance(shortened->text()), 640);
    EXPECT_TRUE(shortened->text().startsWith(u"⚠ WW"_s) && shortened->text().endsWith(u"WW · Not allowed"_s));
    EXPECT_EQ(shortened->toolTip(), entry.title + u" · Without it: silence"_s);
}

TEST(PanelIcon, TellsItsThreeStatesByShapeAtEverySize) {
    for (const int size : {18, 36, 54}) {
        const auto image = [&](bool on, bool dimmed) {
            return panelIcon({.on = on, .dimmed = dimmed, .toolTip = {}}).pixmap(size).toImage();
        };
        const QImage active = image(true, false), offline = image(true, true), silent = image(false, true);
        ASSERT_EQ(active.width(), size);
        const auto filled = [&](const QImage &i, double x, double y) {
            const QColor c = i.pixelColor(static_cast<int>(x * size / 18), static_cast<int>(y * size / 18));
            return c.alpha() > 200;
        };
        EXPECT_TRUE(filled(active, 9, 9) && filled(active, 4.2, 9)) << size;
        EXPECT_TRUE(!filled(offline, 9, 9) && filled(offline, 4.2, 9)) << size;
        EXPECT_TRUE(filled(silent, 9, 9) && !filled(silent, 4.2, 9)) << size;
    }
}

} // namespace
} // namespace korvel::test
