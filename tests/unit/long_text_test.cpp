#include "platform/plain_text.h"
#include "ui/alert_window.h"
#include "ui/text_styles.h"
#include "ui/window_place.h"

#include <QPushButton>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

TEST(LongText, ANameWithoutABlankIsBrokenAndNothingOfItLost) {
    ToneLabel label(uiFont(13), Tone::Normal);
    label.setWordWrap(true);
    const int line = label.wrappedSize(300).height();
    for (const QString &name : {QString(200, u'W'), u"محمد"_s.repeated(50), u"👩‍💻"_s.repeated(60)}) {
        label.setText(u"Denied "_s + name + u" for good"_s);
        const QSize size = label.wrappedSize(300);
        EXPECT_LE(size.width(), 300);
        EXPECT_GE(size.height(), 3 * line);
        EXPECT_EQ(label.heightForWidth(300), size.height());
    }
}

TEST(LongText, OnlyWhatComesFromOutsideIsScrolledInAnAlert) {
    const auto sizeWith = [&](const QString &said, bool scrolls) {
        AlertDialog dialog({.title = u"New device: Anna's phone"_s,
                            .fromOutside = said,
                            .text = u"Do not enter it. "_s.repeated(20),
                            .buttons = {u"Allow"_s, u"Deny"_s, u"Later"_s},
                            .fields = {{}, {}, {.kind = AlertField::Kind::Address}}},
                           [](const AlertAnswer &) {});
        dialog.show();
        for (const QWidget *part : dialog.findChildren<QWidget *>()) {
            const auto *text = dynamic_cast<const ToneLabel *>(part);
            if (text && text->text() == said) {
                EXPECT_EQ(text->height() > text->parentWidget()->height(), scrolls);
                continue;
            }
            if (text || qobject_cast<const QPushButton *>(part)) {
                EXPECT_TRUE(dialog.rect().contains({part->mapTo(&dialog, QPoint()), part->size()}));
            }
        }
        return dialog.size();
    };
    const QSize one = sizeWith(u"No."_s, false), ten = sizeWith(u"No.\n"_s.repeated(10), false);
    EXPECT_GT(ten.height(), one.height() + 100);
    for (const QString &flood : {QString(1000, u'W'), u"\n"_s.repeated(999) + u'.'}) {
        const QSize full = sizeWith(flood, true);
        EXPECT_EQ(full.width(), one.width());
        EXPECT_GT(full.height(), ten.height());
        EXPECT_LE(full.height(), roomForWindows().height());
    }
}

TEST(LongText, ANameIsOneLineOfSixtyFourCharactersAtMost) {
    const QString family = u"👨‍👩‍👧‍👦"_s, wave = u"👋🏽"_s;
    const struct {
        QString name, shown;
    } cases[] = {
        {u"Anna’s phone"_s, u"Anna’s phone"_s},
        {u" a\r\n\tb\u2028c\u3000\u2800d "_s, u"a b c d"_s},
        {u"\u200b\u202e\u2066\ufeff\u00ad"_s, u""_s},
        {u"a\u200b\u202eb"_s, u"ab"_s},
        {u"می‌خواهم"_s, u"می‌خواهم"_s}, // needs its zero-width non-joiner
        {QString(64, u'W'), QString(64, u'W')},
        {QString(65, u'W'), QString(63, u'W') + u'…'},
        {u"é"_s.normalized(QString::NormalizationForm_D).repeated(64),
         u"é"_s.normalized(QString::NormalizationForm_D).repeated(64)},
        {u"e"_s + u"\u0301\u0301\u0301\u200b"_s.repeated(99), u"e\u0301\u0301\u0301\u0301"_s},
        {family + wave, family + wave},
        {QString(100000, u'\n') + u'a', u"…"_s},
        {u"\u1100"_s.repeated(2000), u"…"_s}, // one character that never ends
    };
    for (const auto &c : cases)
        EXPECT_EQ(shownName(c.name), c.shown) << c.name.left(20).toStdString();
}

TEST(LongText, ATextKeepsItsLinesAndLosesWhatNobodySees) {
    EXPECT_EQ(multiLine(u"a\r\nb\rc\u2028d\te\n \u3000\n"_s), u"a\nb\nc\nd e"_s);
    EXPECT_EQ(singleLine(u" a\nb \t\n"_s), u" a b"_s);
    EXPECT_EQ(multiLine(QString(1000, u'x') + QString(5000, u'\n')), QString(1000, u'x'));
    EXPECT_EQ(multiLine(QString(998, u'x') + u"😀y"_s), QString(998, u'x') + u'…');
}

TEST(WindowPlace, IsTheMiddleOfTheScreenAndNeverOverItsUpperLeftEdge) {
    const QRect room = roomForWindows();
    QWidget window;
    window.resize(300, 200);
    window.show(); // the second time the frame is known
    window.hide();
    centreOnScreen(window);
    EXPECT_LE((window.frameGeometry().center() - room.center()).manhattanLength(), 2);
    window.resize(room.size() * 2);
    centreOnScreen(window);
    EXPECT_EQ(window.pos(), room.topLeft());
}

TEST(LongText, ANameFromRightToLeftLeavesTheOrderOfItsSentence) {
    const struct {
        QString text, shown;
    } cases[] = {
        {u"Denied Anna. 2 · 3"_s, u"Denied Anna. 2 · 3"_s},
        {u"● של אנה 2 · 1 session"_s, u"● \u2068של אנה 2\u2069 · 1 session"_s},
        {u"A של, אנה\n"_s, u"A \u2068של\u2069, \u2068אנה\u2069\n"_s},
        {u"Denied \u202egnp. If"_s, u"Denied gnp. If"_s}, // would turn the rest of the sentence round
        {u"𞤀𞤣 😀"_s, u"\u2068𞤀𞤣\u2069 😀"_s},
    };
    for (const auto &c : cases)
        EXPECT_EQ(keepOrder(c.text), c.shown) << c.text.toStdString();
}

} // namespace
} // namespace korvel::test
