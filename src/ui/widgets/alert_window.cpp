#include "ui/widgets/alert_window.h"

#include "ui/widgets/buttons.h"
#include "ui/widgets/icons.h"
#include "ui/widgets/scrolling_text.h"
#include "ui/widgets/text_fields.h"
#include "ui/widgets/text_styles.h"
#include "ui/widgets/windows.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <utility>

namespace korvel {

namespace {

constexpr int TEXT_WIDTH = 368;
constexpr QSize FIELD_SIZE(280, 24);

ToneLabel *paragraph(const QString &text, const QFont &font, Tone tone, QWidget *parent) {
    auto *label = new ToneLabel(font, tone, parent);
    label->setText(text);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setFixedWidth(TEXT_WIDTH);
    return label;
}

QLabel *symbol(const AlertView &view, QWidget *parent) {
    auto *label = new QLabel(parent);
    label->setPixmap(alertSymbol(view.warning, parent->devicePixelRatioF()));
    return label;
}

/// Whether the platform puts the main button at the right end.
bool mainButtonIsLast(const QWidget &window) {
    const int layout = window.style()->styleHint(QStyle::SH_DialogButtonLayout, nullptr, &window);
    return layout == QDialogButtonBox::MacLayout || layout == QDialogButtonBox::GnomeLayout;
}

} // namespace

AlertDialog::AlertDialog(const AlertView &v, std::function<void(const AlertAnswer &)> a)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      view(v), answered(std::move(a)), keys(*this) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QStringLiteral("Korvel"));
    setAccessibleDescription(view.title);
    keepReadable(*this);
    closeByKey(*this);
    auto *column = new QVBoxLayout;
    column->setSpacing(8);
    addWords(*column);
    for (const AlertField &field : view.fields)
        addField(field, *column);
    column->addSpacing(10);
    column->addWidget(buttonRow());
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(22, 22, 24, 20);
    row->setSpacing(16);
    row->addWidget(symbol(view, this), 0, Qt::AlignTop);
    row->addLayout(column);
    fitHeight(*this, sizeHint().width());
    if (inputs.isEmpty())
        return;
    if (auto *code = dynamic_cast<PairCodeField *>(inputs.first()))
        requireWholeCode(*code);
    inputs.first()->setFocus();
}

void AlertDialog::addWords(QVBoxLayout &column) {
    column.addWidget(paragraph(view.title, uiFont(14, QFont::DemiBold), Tone::Normal, this));
    if (!view.fromOutside.isEmpty()) {
        auto *said = new ScrollingText(paragraph({}, uiFont(13), Tone::Normal, this), TEXT_WIDTH, this);
        said->setTextOrHide(view.fromOutside);
        column.addWidget(said);
    }
    if (!view.fromOutside.isEmpty() && !view.text.isEmpty())
        column.addSpacing(6); // between the two authors
    if (!view.text.isEmpty())
        column.addWidget(paragraph(view.text, uiFont(13), Tone::Normal, this));
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
    const bool lastIsMain = mainButtonIsLast(*this);
    for (qsizetype i = 0; i < view.buttons.size(); ++i) {
        auto *button = new TextButton(view.buttons.at(i), row);
        // Return presses only the default button, wherever the focus is. If it is disabled, Return does nothing.
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, i] { answer(static_cast<int>(i)); });
        layout->insertWidget(lastIsMain ? 1 : layout->count(), button);
        answers.append(button);
    }
    for (int i = 2; i < layout->count(); ++i) // Tab follows the reading order
        setTabOrder(layout->itemAt(i - 1)->widget(), layout->itemAt(i)->widget());
    answers.at(view.main)->setDefault(true);
    if (view.fields.isEmpty())
        answers.at(view.main)->setFocus();
    return row;
}

void AlertDialog::bringUp(OpenedBy by) {
    keys.comesUp(by);
    bringToFront(*this); // not modal: macOS disables the status menu during a modal dialog
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

bool AlertWindow::isOpen() const { return current && current->isVisible(); }

bool AlertWindow::open(const AlertView &view, OpenedBy by, std::function<void(const AlertAnswer &)> answered) {
    const bool isFirst = !isOpen();
    if (isFirst) {
        current = new AlertDialog(view, std::move(answered));
        // Otherwise QDialog places itself, too far left because of its estimate of the frame.
        centreOnScreen(*current);
    }
    current->bringUp(by);
    return isFirst;
}

} // namespace korvel
