#include "ui/alert_window.h"

#include "status/icon_view.h"
#include "ui/close_key.h"
#include "ui/code_field.h"
#include "ui/icon_image.h"
#include "ui/secret_field.h"
#include "ui/text_styles.h"
#include "ui/window_front.h"
#include "ui/window_place.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

namespace korvel {

namespace {

constexpr int TEXT_WIDTH = 368;
constexpr int SYMBOL_SIZE = 40;
constexpr QSize FIELD_SIZE(280, 24);
constexpr int ROOM_BESIDES_TEXT = 290;   // title bar, margins, as many fields as there are, buttons
constexpr qsizetype MOST_SHOWN = 10'000; // characters; to lay out a megabyte takes seconds
constexpr int BUTTON_MARGINS = 32;       // left and right together; some styles leave a long title hardly any

ToneLabel *paragraph(const QString &text, const QFont &font, Tone tone, QWidget *parent) {
    auto *label = new ToneLabel(font, tone, parent);
    label->setText(text.left(MOST_SHOWN));
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setFixedWidth(TEXT_WIDTH);
    return label;
}

/// What the alert says. It scrolls where it would push the buttons off the screen.
QWidget *sentences(const AlertView &view, QWidget *parent) {
    auto *all = new QWidget(parent);
    auto *column = new QVBoxLayout(all);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(paragraph(view.title, uiFont(14, QFont::DemiBold), Tone::Normal, all));
    if (!view.text.isEmpty())
        column->addWidget(paragraph(view.text, uiFont(13), Tone::Normal, all));
    fitHeight(*all, TEXT_WIDTH);
    const int highest = roomForWindows().height() - ROOM_BESIDES_TEXT;
    if (all->height() <= highest)
        return all;
    auto *scroller = new QScrollArea(parent);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidget(all);
    scroller->setFixedSize(TEXT_WIDTH + scroller->verticalScrollBar()->sizeHint().width(), highest);
    return scroller;
}

/// A triangle with an exclamation mark, sharp at every scale and clear on light and dark.
QPixmap warningSign(qreal pixelsPerPoint) {
    const int pixels = qRound(SYMBOL_SIZE * pixelsPerPoint);
    QPixmap pixmap(pixels, pixels);
    pixmap.setDevicePixelRatio(pixelsPerPoint);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor amber(0xf5, 0xa6, 0x23), ink(0x24, 0x29, 0x30);
    painter.setPen(QPen(amber, 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(amber);
    painter.drawPolygon(QPolygonF{{20, 6}, {36, 34}, {4, 34}});
    painter.setPen(QPen(ink, 4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(20, 15), QPointF(20, 24));
    painter.drawPoint(QPointF(20, 31));
    return pixmap;
}

QLabel *symbol(const AlertView &view, QWidget *parent) {
    auto *label = new QLabel(parent);
    const IconView active{.on = true, .dimmed = false, .toolTip = {}};
    label->setPixmap(view.warning ? warningSign(parent->devicePixelRatioF())
                                  : panelIcon(active).pixmap(QSize(SYMBOL_SIZE, SYMBOL_SIZE)));
    return label;
}

} // namespace

AlertDialog::AlertDialog(const AlertView &v, std::function<void(const AlertAnswer &)> a)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      view(v), answered(std::move(a)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QStringLiteral("Korvel"));
    setAccessibleDescription(view.title);
    keepReadable(*this);
    closeByKey(*this);
    auto *text = new QVBoxLayout;
    text->setSpacing(8);
    text->addWidget(sentences(view, this));
    for (const AlertField &field : view.fields)
        addField(field, *text);
    text->addSpacing(10);
    text->addWidget(buttonRow());
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(22, 22, 24, 20);
    row->setSpacing(16);
    row->addWidget(symbol(view, this), 0, Qt::AlignTop);
    row->addLayout(text);
    row->setSizeConstraint(QLayout::SetFixedSize);
    if (inputs.isEmpty())
        return;
    if (auto *code = dynamic_cast<PairCodeField *>(inputs.first()))
        requireWholeCode(*code);
    inputs.first()->setFocus();
}

void AlertDialog::addField(const AlertField &field, QVBoxLayout &column) {
    if (inputs.isEmpty())
        column.addSpacing(6);
    if (field.kind == AlertField::Kind::Code) {
        inputs.append(new PairCodeField(this));
        inputs.last()->setAccessibleName(view.title);
    } else {
        auto *line = new QLineEdit(this);
        line->setText(field.text);
        line->setFixedSize(FIELD_SIZE);
        line->setFont(field.kind == AlertField::Kind::Address ? codeFont(11) : uiFont(13));
        line->setAccessibleName(field.label);
        if (field.kind == AlertField::Kind::Secret)
            makeSecret(*line);
        if (field.kind == AlertField::Kind::Address)
            column.addWidget(paragraph(field.label, uiFont(11), Tone::Secondary, this));
        else
            line->setPlaceholderText(field.label);
        inputs.append(line);
    }
    column.addWidget(inputs.last(), 0, Qt::AlignLeft);
}

void AlertDialog::requireWholeCode(PairCodeField &code) {
    answers.first()->setEnabled(false);
    code.onEdited = [this, &code] { answers.first()->setEnabled(code.isComplete()); };
}

QWidget *AlertDialog::buttonRow() {
    auto *row = new QWidget(this);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addStretch();
    for (qsizetype i = 0; i < view.buttons.size(); ++i) {
        auto *button = new QPushButton(view.buttons.at(i), row);
        // Return is for the first button alone, wherever the focus is; a disabled one does nothing.
        button->setAutoDefault(false);
        button->setMinimumWidth(button->fontMetrics().horizontalAdvance(button->text()) + BUTTON_MARGINS);
        connect(button, &QPushButton::clicked, this, [this, i] { answer(static_cast<int>(i)); });
        layout->addWidget(button);
        answers.append(button);
    }
    answers.first()->setDefault(true);
    if (view.fields.isEmpty())
        answers.first()->setFocus();
    return row;
}

void AlertDialog::reject() { answer(view.escape); }

void AlertDialog::answer(int button) {
    const auto report = std::exchange(answered, nullptr);
    if (!report)
        return;
    AlertAnswer given{.button = button};
    for (const QLineEdit *input : inputs)
        given.texts.append(input->text());
    hide();
    deleteLater();
    report(given);
}

AlertWindow::~AlertWindow() { delete current; }

bool AlertWindow::open(const AlertView &view, std::function<void(const AlertAnswer &)> answered) {
    const bool isFirst = !current || !current->isVisible();
    if (isFirst) {
        current = new AlertDialog(view, std::move(answered));
        // A dialog would place itself, too far left by what it takes for its frame.
        current->adjustSize();
        centreOnScreen(*current);
        current->open();
    }
    bringToFront(*current);
    return isFirst;
}

} // namespace korvel
