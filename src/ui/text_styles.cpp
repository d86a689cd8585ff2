#include "ui/text_styles.h"

#include <QEvent>
#include <QFontDatabase>
#include <QGuiApplication>

namespace korvel {

namespace {

QFont sized(QFont font, int points, QFont::Weight weight) {
    font.setPixelSize(points);
    font.setWeight(weight);
    return font;
}

QColor mixed(const QColor &text, const QColor &ground, double share) {
    const auto part = [share](int a, int b) { return static_cast<int>(share * a + (1 - share) * b); };
    return QColor(part(text.red(), ground.red()), part(text.green(), ground.green()), part(text.blue(), ground.blue()));
}

} // namespace

QFont uiFont(int points, QFont::Weight weight) { return sized(QGuiApplication::font(), points, weight); }

QFont codeFont(int points, QFont::Weight weight) {
    return sized(QFontDatabase::systemFont(QFontDatabase::FixedFont), points, weight);
}

QColor toneColour(Tone tone, const QPalette &palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    switch (tone) {
    case Tone::Normal:
        break;
    case Tone::Secondary:
        return mixed(text, ground, 0.74);
    case Tone::Tertiary:
        return mixed(text, ground, 0.64);
    case Tone::Error:
        return ground.lightness() < 128 ? QColor(0xff, 0x9b, 0x91) : QColor(0xb8, 0x1c, 0x1c);
    }
    return text;
}

ToneLabel::ToneLabel(QFont font, Tone t, QWidget *parent) : QLabel(parent), tone(t) {
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setFont(font);
    paintTone();
}

void ToneLabel::setTone(Tone t) {
    if (tone == t)
        return;
    tone = t;
    paintTone();
}

void ToneLabel::setTextOrHide(const QString &text) {
    setText(text);
    setVisible(!text.isEmpty());
}

void ToneLabel::changeEvent(QEvent *event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !painting)
        paintTone();
}

void ToneLabel::paintTone() {
    painting = true;
    const QPalette around = parentWidget() ? parentWidget()->palette() : QGuiApplication::palette();
    QPalette own = around;
    own.setColor(QPalette::WindowText, toneColour(tone, around));
    setPalette(own);
    painting = false;
}

} // namespace korvel
