#pragma once

#include <QFont>
#include <QLabel>
#include <QPalette>

class QTextLayout;

namespace korvel {

/// The system font at a size in points (device-independent pixels).
QFont uiFont(int points, QFont::Weight weight = QFont::Normal);
/// The system's monospaced font.
QFont codeFont(int points, QFont::Weight weight = QFont::Normal);

/// Prominence of a text.
enum class Tone { Normal, Secondary, Tertiary, Link, Error };

/// The colour of a tone on windows of `palette`; contrast at least 4.5:1 (WCAG 2.1, 1.4.3).
QColor toneColour(Tone tone, const QPalette &palette);

/// Background of a recessed or raised area. Texts of every tone except Tertiary are readable on it.
enum class Ground { Sunken, Raised };
QColor groundColour(Ground ground, const QPalette &palette);

/// A partial palette with readable colours for placeholders and disabled texts (contrast at least 4.5:1), which some
/// systems leave hardly visible.
QPalette readableColours(const QPalette &palette);
/// Applies readableColours() to a window, also after palette changes.
void keepReadable(QWidget &window);

/// Minimum contrast of an edge against its background (WCAG 2.1, 1.4.11).
constexpr double EDGE_CONTRAST = 3;
/// Edge colour of controls on windows of `palette`. Has a margin for styles that paint it paler.
QColor edgeColour(const QPalette &palette);

/// Contrast ratio of two colours (WCAG 2.1), 1 to 21.
double contrastRatio(const QColor &a, const QColor &b);

/// A centred plain-text label. Its colour follows its tone in light and dark appearance. With word wrap, it breaks
/// inside a word if necessary, and right-to-left names do not reorder the sentence.
class ToneLabel : public QLabel {
public:
    ToneLabel(QFont font, Tone tone, QWidget *parent = nullptr);
    void setTone(Tone tone);
    /// Shows `text`, or hides the label if it is empty.
    void setTextOrHide(const QString &text);
    /// Size of the text when wrapped at `width`.
    QSize wrappedSize(int width) const;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void paintTone();
    QRectF layOut(QTextLayout &layout, int width) const;
    Tone tone;
    bool painting = false;
};

} // namespace korvel
