#include "ui/code_field.h"
#include "ui/contrast_style.h"
#include "ui/main_button.h"
#include "ui/text_styles.h"
#include "ui/window_place.h"

#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>

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

TEST(ToneColour, ALinkHasTheSystemsColourWhereThereIsOne) {
    QPalette palette = looks().first();
    palette.setColor(QPalette::Link, QColor(0x00, 0x57, 0xae));
    EXPECT_EQ(toneColour(Tone::Link, palette), QColor(0x00, 0x57, 0xae));
    palette.setColor(QPalette::Link, Qt::blue); // Qt's own default
    EXPECT_NE(toneColour(Tone::Link, palette), QColor(Qt::blue));
}

/// The highest contrast to `ground` in a line of pixels.
double highestContrast(const QImage &image, QPoint from, QPoint step, int pixels, const QColor &ground) {
    double highest = 1;
    for (QPoint at = from; pixels > 0; at += step, --pixels)
        highest = std::max(highest, contrastRatio(image.pixelColor(at), ground));
    return highest;
}

TEST(ContrastStyle, EdgesAndSeparatorsCanBeToldFromWhatIsAroundThem) {
    ContrastStyle style(QStringLiteral("Fusion"));
    for (const QPalette &palette : looks()) {
        const QColor ground = palette.color(QPalette::Window);
        SCOPED_TRACE(ground.name().toStdString());
        QCheckBox box;
        QPushButton button(QStringLiteral("Wait"));
        PairCodeField field;
        MainButton main;
        for (QWidget *control : std::initializer_list<QWidget *>{&box, &button, &field, &main}) {
            for (const bool enabled : {true, false}) {
                control->setStyle(&style);
                control->setPalette(palette);
                control->setEnabled(enabled);
                control->resize(control->sizeHint());
                const QImage image = control->grab().toImage();
                EXPECT_GE(highestContrast(image, {0, image.height() / 2}, {1, 0}, 4, ground), EDGE_CONTRAST)
                    << control->metaObject()->className();
            }
        }
        QPalette etched = palette;
        etched.setColor(QPalette::Light, Qt::red); // of which styles make a second contour of disabled entries
        QMenu menu;
        menu.setStyle(&style);
        menu.setPalette(etched);
        menu.addAction(QStringLiteral("Wait"));
        QAction *separator = menu.addSeparator();
        menu.addAction(QStringLiteral("Wait"))->setEnabled(false);
        const QRect place = menu.actionGeometry(separator);
        menu.resize(menu.sizeHint());
        const QImage image = menu.grab().toImage();
        EXPECT_GE(highestContrast(image, {place.center().x(), place.top()}, {0, 1}, place.height(),
                                  palette.color(QPalette::Base)),
                  3.0);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                ASSERT_EQ(image.pixelColor(x, y).saturation() > 200, false);
    }
}

TEST(PairCodeField, TheCaretStandsBeforeTheFirstDigitOfTheCodeToBe) {
    PairCodeField field;
    const auto caret = [&] {
        field.grab(); // a line edit places its text as it paints
        return field.inputMethodQuery(Qt::ImCursorRectangle).toRect().center().x();
    };
    const int empty = caret();
    QTest::keyClicks(&field, QStringLiteral("1"));
    EXPECT_GT(caret(), 220 / 2);
    QTest::keyClicks(&field, QStringLiteral("23456"));
    EXPECT_EQ(field.text(), QStringLiteral("123 456"));
    field.setCursorPosition(0);
    EXPECT_NEAR(caret(), empty, 1);
    field.clear();
    EXPECT_EQ(caret(), empty);
}

TEST(MenuPlace, IsBesideThePanelAndNotOverIt) {
    const QRect screen(1280, 0, 1280, 800); // the right one of two
    const QSize menu(300, 200);
    const struct {
        QPoint pointer;
        QRect room; // what the panel leaves
        QPoint place;
    } cases[] = {
        {{1800, 12}, screen.adjusted(0, 28, 0, 0), {1800, 28}},    // above
        {{2550, 12}, screen.adjusted(0, 28, 0, 0), {2260, 28}},    // in the corner
        {{1800, 790}, screen.adjusted(0, 0, 0, -40), {1800, 560}}, // below
        {{1290, 300}, screen.adjusted(48, 0, 0, 0), {1328, 300}},  // on the left
        {{2540, 700}, screen.adjusted(0, 0, -48, 0), {2212, 600}}, // on the right
        {{1800, 16}, screen, {1800, 32}},                          // above, and nobody tells
        {{1800, 799}, screen, {1800, 572}},                        // below, at the very edge
    };
    for (const auto &c : cases) {
        const QPoint place = menuPlace(c.pointer, menu, screen, c.room);
        EXPECT_EQ(place, c.place) << c.pointer.x() << ' ' << c.pointer.y() << ": " << place.x() << ' ' << place.y();
        EXPECT_TRUE(screen.contains(QRect(place, menu)));
    }
}

} // namespace
} // namespace korvel::test
