#pragma once

#include <QFont>
#include <QLabel>
#include <QPalette>

class QTextLayout;

namespace korvel {

/// The system's font at a size in points (device-independent pixels).
QFont uiFont(int points, QFont::Weight weight = QFont::Normal);
/// The system's monospaced font.
QFont codeFont(int points, QFont::Weight weight = QFont::Normal);

/// How much a text stands out.
enum class Tone { Normal, Secondary, Tertiary, Link, Error };

/// The colour of a tone on the windows of `palette`; at least 4.5 to 1 against them (WCAG 2.1, 1.4.3).
QColor toneColour(Tone tone, const QPalette &palette);

/// A part of a window that stands back or forth; texts of every tone but Tertiary can be read on it.
enum class Ground { Sunken, Raised };
QColor groundColour(Ground ground, const QPalette &palette);

/// The colours of placeholders and of texts that cannot be used now, at least 4.5 to 1 against what they stand on: some
/// systems leave them hardly visible. Sets nothing else.
QPalette readableColours(const QPalette &palette);
/// Gives a window these colours, now and after each change of its palette.
void keepReadable(QWidget &window);

/// What an edge needs against what it stands on (WCAG 2.1, 1.4.11).
constexpr double EDGE_CONTRAST = 3;
/// The colour of a control's edge on the windows of `palette`; enough contrast also where a style paints it a little
/// paler.
QColor edgeColour(const QPalette &palette);

/// The ratio of contrast between two colours (WCAG 2.1), 1 to 21.
double contrastRatio(const QColor &a, const QColor &b);

/// A centred label of plain text whose colour follows its tone in light and dark appearance. With word wrap it breaks
/// inside a word where there is no other way, and a name in a script from right to left does not turn its sentence
/// round.
class ToneLabel : public QLabel {
public:
    ToneLabel(QFont font, Tone tone, QWidget *parent = nullptr);
    void setTone(Tone tone);
    /// Shows `text`, and nothing at all when it is empty.
    void setTextOrHide(const QString &text);
    /// What the text needs when its lines are at most `width` wide.
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
