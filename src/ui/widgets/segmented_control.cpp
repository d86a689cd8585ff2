#include "ui/widgets/segmented_control.h"

#include "ui/widgets/text_styles.h"

#include <QBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QRadioButton>

namespace korvel {

namespace {

constexpr int HEIGHT = 28;
constexpr int INSET = 2;
constexpr qreal RADIUS = 6;

class Segment final : public QRadioButton {
public:
    using QRadioButton::QRadioButton;
    QSize sizeHint() const override { return {fontMetrics().horizontalAdvance(text()) + 24, HEIGHT - 2 * INSET}; }
    QSize minimumSizeHint() const override { return sizeHint(); }
    std::function<void()> onPointer;

protected:
    bool hitButton(const QPoint &point) const override { return rect().contains(point); }
    void mouseReleaseEvent(QMouseEvent *event) override {
        const bool clicks = isDown() && hitButton(event->position().toPoint());
        QRadioButton::mouseReleaseEvent(event);
        if (clicks)
            onPointer();
    }
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        if (isChecked()) {
            painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 2) : edgeColour(palette()));
            painter.setBrush(groundColour(Ground::Raised, palette()));
            painter.drawRoundedRect(hasFocus() ? frame.adjusted(0.5, 0.5, -0.5, -0.5) : frame, RADIUS - 1, RADIUS - 1);
        }
        painter.setPen(toneColour(isChecked() && isEnabled() ? Tone::Normal : Tone::Secondary, palette()));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
    }
};

} // namespace

SegmentedControl::SegmentedControl(int count, QWidget *parent) : QWidget(parent) {
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(INSET, INSET, INSET, INSET);
    row->setSpacing(INSET);
    setFixedHeight(HEIGHT);
    for (int index = 0; index < count; ++index) {
        auto *segment = new Segment(this);
        segment->setFont(uiFont(12));
        segment->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        segment->setFocusPolicy(Qt::ClickFocus);
        connect(segment, &QAbstractButton::toggled, this, [this, index, segment](bool on) {
            // One Tab stop; the arrow keys change the choice.
            segment->setFocusPolicy(on ? Qt::StrongFocus : Qt::ClickFocus);
            if (on && onChosen)
                onChosen(index);
        });
        segment->onPointer = [this] {
            if (onClicked)
                onClicked();
        };
        row->addWidget(segment);
        segments.append(segment);
    }
}

void SegmentedControl::setTitles(const QStringList &titles) {
    for (qsizetype i = 0; i < segments.size(); ++i)
        segments.at(i)->setText(titles.value(i));
}

void SegmentedControl::setCurrent(int index) {
    if (index < 0 || index >= segments.size() || segments.at(index)->isChecked())
        return;
    const auto callback = std::exchange(onChosen, nullptr); // set by the program, not by the user
    segments.at(index)->setChecked(true);
    onChosen = callback;
}

void SegmentedControl::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(groundColour(Ground::Sunken, palette()));
    painter.drawRoundedRect(rect(), RADIUS, RADIUS);
}

} // namespace korvel
