#include "ui/widgets/pair_window.h"

#include "app/model/wording.h"
#include "ui/widgets/buttons.h"
#include "ui/widgets/windows.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <initializer_list>

namespace korvel {

namespace {

constexpr int WIDTH = 400;
constexpr int TEXT_WIDTH = 352;

ScrollingText *wrapping(int points, Tone tone, QWidget *parent) {
    return new ScrollingText(new ToneLabel(uiFont(points), tone), TEXT_WIDTH, parent);
}

} // namespace

PairWindow::PairWindow(const PairPanel::Events &events)
    : QWidget(nullptr, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint |
                           Qt::WindowStaysOnTopHint),
      pairTitleF(new ToneLabel(uiFont(15, QFont::DemiBold), Tone::Normal, this)),
      pairCodeF(new ToneLabel(codeFont(46, QFont::DemiBold), Tone::Normal, this)),
      pairLineF(wrapping(13, Tone::Normal, this)), pairHintF(wrapping(11, Tone::Secondary, this)),
      pairErrF(wrapping(12, Tone::Error, this)), pairNewBtn(new TextButton(L(u"刷新", u"Refresh"), this)),
      pairBtn(new TextButton(this)), keys(*this) {
    setWindowTitle(QStringLiteral("Korvel"));
    setAttribute(Qt::WA_QuitOnClose, false);
    keepReadable(*this);
    closeByKey(*this);
    pairCodeF->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch();
    buttons->addWidget(pairNewBtn);
    buttons->addWidget(pairBtn);
    buttons->addStretch();
    pairBtn->setDefault(true);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(24, 22, 24, 20);
    column->setSpacing(8);
    for (QWidget *text : std::initializer_list<QWidget *>{pairTitleF, pairCodeF, pairLineF, pairHintF, pairErrF})
        column->addWidget(text, 0, Qt::AlignHCenter);
    column->addSpacing(14);
    column->addLayout(buttons);
    connect(pairBtn, &QPushButton::clicked, this, events.buttonClicked);
    connect(pairNewBtn, &QPushButton::clicked, this, events.renewClicked);
}

void PairWindow::apply(const PairView &view) {
    pairTitleF->setText(view.title);
    pairCodeF->setText(view.code);
    pairCodeF->setTone(view.codeMuted ? Tone::Tertiary : Tone::Normal);
    pairCodeF->setAccessibleName(view.codeName);
    // A code can be focused with Tab and copied with the keyboard; a placeholder cannot.
    pairCodeF->setFocusPolicy(view.codeName.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
    pairLineF->setTextOrHide(view.line);
    pairHintF->setTextOrHide(view.hint);
    pairErrF->setTextOrHide(view.error);
    pairBtn->setText(view.button);
    pairNewBtn->setVisible(view.refreshVisible);
    pairNewBtn->setEnabled(view.refreshEnabled);
    fitHeight(*this, WIDTH);
}

void PairWindow::present(const PairView &view, OpenedBy by) {
    apply(view);
    keys.comesUp(by);
    if (!isVisible()) {
        centreOnScreen(*this);
        pairBtn->setFocus();
    }
    bringToFront(*this, WindowLevel::Floating);
}

void PairWindow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        return pairBtn->click();
    QWidget::keyPressEvent(event);
}

void PairWindowPanel::connect(Events e) { events = std::move(e); }

void PairWindowPanel::present(const PairView &view, OpenedBy by) {
    if (!window)
        window = std::make_unique<PairWindow>(events);
    window->present(view, by);
}

void PairWindowPanel::apply(const PairView &view) {
    if (window)
        window->apply(view);
}

void PairWindowPanel::hide() {
    if (window)
        window->hide();
}

} // namespace korvel
