#include "ui/widgets/text_styles.h"

#include "base/plain_text.h"

#include <QEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

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

double luminance(const QColor &colour) {
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

constexpr double READABLE = 4.5;

/// QTextLayout only breaks at line separators.
QString lines(const QString &text) { return keepOrder(text).replace(u'\n', QChar::LineSeparator); }

} // namespace

double contrastRatio(const QColor &a, const QColor &b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor groundColour(Ground ground, const QPalette &palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    const bool dark = window.lightness() < 128;
    if (ground == Ground::Sunken)
        return mixed(text, window, dark ? 0.06 : 0.09);
    return dark ? mixed(text, window, 0.22) : QColor(Qt::white);
}

QPalette readableColours(const QPalette &palette) {
    QPalette colours;
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        colours.setColor(QPalette::Disabled, role, toneColour(Tone::Tertiary, palette));
    const QColor typed = palette.color(QPalette::Active, QPalette::Text);
    const QColor field = palette.color(QPalette::Active, QPalette::Base);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
        colours.setColor(group, QPalette::PlaceholderText, mixed(typed, field, 0.58));
    colours.setColor(QPalette::Disabled, QPalette::PlaceholderText, toneColour(Tone::Tertiary, palette));
    return colours;
}

void keepReadable(QWidget &window) {
    struct Keeper final : QObject {
        using QObject::QObject;
        bool eventFilter(QObject *watched, QEvent *event) override {
            if (event->type() == QEvent::PaletteChange)
                apply(static_cast<QWidget &>(*watched));
            return false;
        }
        static void apply(QWidget &w) { w.setPalette(readableColours(w.palette())); } // an equal one sends no event
    };
    Keeper::apply(window);
    window.installEventFilter(new Keeper(&window));
}

QColor edgeColour(const QPalette &palette) {
    return mixed(palette.color(QPalette::Active, QPalette::WindowText),
                 palette.color(QPalette::Active, QPalette::Window), 0.53);
}

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
    case Tone::Link: {
        const QColor own = palette.color(QPalette::Active, QPalette::Link);
        // Pure blue is Qt's default if the system defines no link colour.
        if (own != Qt::blue && contrastRatio(own, ground) >= READABLE)
            return own;
        return ground.lightness() < 128 ? QColor(0x8c, 0xb4, 0xff) : QColor(0x12, 0x55, 0xc4);
    }
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

QRectF ToneLabel::layOut(QTextLayout &layout, int width) const {
    QTextOption option(alignment());
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(Qt::LeftToRight); // both languages run left to right, whatever script a text starts with
    layout.setTextOption(option);
    QRectF used;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, used.height()});
        used |= line.naturalTextRect();
    }
    layout.endLayout();
    return used;
}

QSize ToneLabel::wrappedSize(int width) const {
    QTextLayout layout(lines(text()), font(), this);
    const QRectF used = layOut(layout, width);
    return {qCeil(used.width()), qCeil(used.height())};
}

int ToneLabel::heightForWidth(int width) const {
    return wordWrap() ? wrappedSize(width).height() : QLabel::heightForWidth(width);
}

void ToneLabel::paintEvent(QPaintEvent *event) {
    if (!wordWrap())
        return QLabel::paintEvent(event);
    QTextLayout layout(lines(text()), font(), this);
    const double spare = height() - layOut(layout, width()).height();
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    layout.draw(&painter, {0, alignment() & Qt::AlignVCenter ? std::max(0.0, spare / 2) : 0});
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
    own.setColor(QPalette::Disabled, QPalette::WindowText, toneColour(Tone::Tertiary, around));
    setPalette(own);
    painting = false;
}

} // namespace korvel
