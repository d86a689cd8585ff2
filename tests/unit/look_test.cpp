#include "base/plain_text.h"
#include "support/fakes.h"
#include "ui/widgets/text_styles.h"
#include "ui/widgets/windows.h"

#include <QTest>

namespace korvel::test {
namespace {

/// The palettes of light and dark desktops.
QList<QPalette> looks() {
    QList<QPalette> palettes;
    for (const auto &[text, ground, field] :
         {std::tuple{QColor(Qt::black), QColor(0xef, 0xef, 0xef), QColor(Qt::white)},
          {Qt::black, Qt::white, Qt::white},
          {Qt::white, QColor(0x32, 0x32, 0x32), QColor(0x1e, 0x1e, 0x1e)},
          {QColor(0xee, 0xee, 0xec), QColor(0x35, 0x35, 0x35), QColor(0x2d, 0x2d, 0x2d)},
          {QColor(0xfc, 0xfc, 0xfc), QColor(0x2a, 0x2e, 0x32), QColor(0x1b, 0x1e, 0x20)}}) {
        QPalette palette(text, ground, ground.lighter(150), ground.darker(180), ground.darker(130), text, Qt::white,
                         field, ground);
        palette.setColor(QPalette::PlaceholderText, readableColours(palette).color(QPalette::PlaceholderText));
        palettes.append(palette);
    }
    return palettes;
}

TEST(ToneColour, EveryToneCanBeReadOnLightAndDarkWindows) {
    EXPECT_NEAR(contrastRatio(Qt::black, QColor(0x77, 0x77, 0x77)), 4.69, 0.01); // a published value
    for (const QPalette &palette : looks()) {
        const QColor ground = palette.color(QPalette::Window), field = palette.color(QPalette::Base);
        for (const Tone tone : {Tone::Normal, Tone::Secondary, Tone::Tertiary, Tone::Link, Tone::Error})
            EXPECT_GE(contrastRatio(toneColour(tone, palette), ground), 4.5) << static_cast<int>(tone);
        const QPalette colours = readableColours(palette);
        EXPECT_GE(contrastRatio(colours.color(QPalette::Disabled, QPalette::ButtonText), ground), 4.5);
        const double placeholder = contrastRatio(colours.color(QPalette::Active, QPalette::PlaceholderText), field);
        EXPECT_GE(placeholder, 4.5);
        EXPECT_LE(placeholder, contrastRatio(palette.color(QPalette::Text), field) / 2);
    }
}

TEST(ToneColour, ALinkHasTheSystemsColourIfThereIsOne) {
    QPalette palette = looks().first();
    palette.setColor(QPalette::Link, QColor(0x00, 0x57, 0xae));
    EXPECT_EQ(toneColour(Tone::Link, palette), QColor(0x00, 0x57, 0xae));
    palette.setColor(QPalette::Link, Qt::blue); // Qt's own default
    EXPECT_NE(toneColour(Tone::Link, palette), QColor(Qt::blue));
}

TEST(LongText, ANameIsOneLineOfSixtyFourCharactersAtMost) {
    const QString family = u"👨‍👩‍👧‍👦"_s, wave = u"👋🏽"_s;
    const std::pair<QString, QString> cases[] = {
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
        {QString(61, u'W') + u"ਊ😀abc"_s, QString(61, u'W') + u"ਊ😀…"_s}, // Qt splits this emoji
        {QString(100000, u'\n') + u'a', u"…"_s},
        {u"\u1100"_s.repeated(2000), u"…"_s}, // one character that never ends
    };
    for (const auto &[name, shown] : cases)
        EXPECT_EQ(shownName(name), shown) << name.left(20).toStdString();
}

TEST(LongText, ATextKeepsItsLinesAndLosesItsInvisibleCharacters) {
    EXPECT_EQ(multiLine(u"a\r\nb\rc\u2028d\te\n \u3000\n"_s), u"a\nb\nc\nd e"_s);
    EXPECT_EQ(singleLine(u" a\nb \t\n"_s), u" a b"_s);
    EXPECT_EQ(singleLine(u"a \u0001\u0085"_s), u"a"_s);
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
    const std::pair<QString, QString> cases[] = {
        {u"Denied Anna. 2 · 3"_s, u"Denied Anna. 2 · 3"_s},
        {u"● של אנה 2 · 1 session"_s, u"● \u2068של אנה 2\u2069 · 1 session"_s},
        {u"A של, אנה\n"_s, u"A \u2068של\u2069, \u2068אנה\u2069\n"_s},
        {u"Denied \u202egnp. If"_s, u"Denied gnp. If"_s}, // would turn the rest of the sentence round
        {u"a\u200f\u200e\u061cb"_s, u"ab"_s},
        {u"𞤀𞤣 😀"_s, u"\u2068𞤀𞤣\u2069 😀"_s},
    };
    for (const auto &[text, shown] : cases)
        EXPECT_EQ(keepOrder(text), shown) << text.toStdString();
}

} // namespace
} // namespace korvel::test
