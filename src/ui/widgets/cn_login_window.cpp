#include "ui/widgets/cn_login_window.h"

#include "app/model/wording.h"
#include "ui/widgets/buttons.h"
#include "ui/widgets/scrolling_text.h"
#include "ui/widgets/segmented_control.h"
#include "ui/widgets/text_fields.h"
#include "ui/widgets/windows.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QStyleOption>
#include <algorithm>

namespace korvel {

namespace {

constexpr int WIDTH = 404;
constexpr int MARGIN = 30;
constexpr int CONTENT = WIDTH - 2 * MARGIN;
constexpr int FIELD_HEIGHT = 30;
constexpr int MESSAGE_LINES = 2;
constexpr int WAYS_TO_SIGN_IN = 2;
constexpr int BUSY_HEIGHT = 3;

ToneLabel *leftLabel(const QFont &font, Tone tone, QWidget *parent) {
    auto *label = new ToneLabel(font, tone, parent);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

ToneLabel *caption(QWidget *parent) { return leftLabel(uiFont(12), Tone::Secondary, parent); }

/// A message line below the fields.
ToneLabel *message(Tone tone, QWidget *parent) {
    ToneLabel *label = leftLabel(uiFont(12), tone, parent);
    label->setWordWrap(true);
    label->setFixedWidth(CONTENT);
    return label;
}

QLineEdit *lineEdit(QLabel *label, QWidget *parent) {
    auto *field = new QLineEdit(parent);
    field->setFont(uiFont(13));
    field->setFixedHeight(FIELD_HEIGHT);
    field->setTextMargins(5, 0, 5, 0);
    label->setBuddy(field);
    return field;
}

/// Width from the box to the end of its text.
int widthOf(const QCheckBox &box) {
    QStyleOptionButton option;
    option.initFrom(&box);
    const QRect contents = box.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &box);
    return contents.left() + box.fontMetrics().horizontalAdvance(box.text());
}

} // namespace

CnLoginWindow::CnLoginWindow(std::function<void(const LoginInput &)> in)
    : EscWindow(nullptr, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint),
      input(std::move(in)), titleF(new ToneLabel(uiFont(20, QFont::DemiBold), Tone::Normal, this)),
      noticeF(new ToneLabel(uiFont(12), Tone::Secondary, this)), tabs(new SegmentedControl(WAYS_TO_SIGN_IN, this)),
      acctL(caption(this)), codeL(caption(this)), passL(caption(this)), acctF(lineEdit(acctL, this)),
      codeF(lineEdit(codeL, this)), passF(lineEdit(passL, this)), sendB(new TextButton(this)),
      agreeB(new QCheckBox(L(u"我已阅读并同意", u"I agree to the"), this)),
      termsB(new LinkButton(L(u"《用户协议》", u"Terms of Service"), this)),
      privacyB(new LinkButton(L(u"《隐私政策》", u"Privacy Policy"), this)), linkA(new LinkButton({}, this)),
      linkB(new LinkButton({}, this)), andF(new ToneLabel(uiFont(12), Tone::Normal, this)),
      infoF(message(Tone::Secondary, this)), errF(new ScrollingText(message(Tone::Error, this), CONTENT, this)),
      mainB(new MainButton(this)), busyBar(new QProgressBar(this)), keys(*this) {
    setWindowTitle(QStringLiteral("Korvel"));
    setAttribute(Qt::WA_QuitOnClose, false);
    onEsc = [this] { close(); };
    noticeF->setWordWrap(true);
    noticeF->setFixedWidth(CONTENT);
    makeSecret(*passF);
    codeF->setInputMethodHints(Qt::ImhPreferNumbers | Qt::ImhNoPredictiveText);
    agreeB->setFont(uiFont(12));
    andF->setText(L(u"和", u"and"));
    sendB->setAutoDefault(false);
    // Fits the longest usual countdown, so that the field next to it keeps its width.
    sendB->setMinimumWidth(std::max(sendB->widthFor(L(u"获取验证码", u"Get Code")),
                                    sendB->widthFor(L(u"60 秒后重新获取", u"Resend in 60s"))));
    sendB->setFixedHeight(FIELD_HEIGHT);
    busyBar->setRange(0, 0);
    busyBar->setTextVisible(false);
    busyBar->setFixedHeight(BUSY_HEIGHT);
    QSizePolicy keepsItsRoom = busyBar->sizePolicy();
    keepsItsRoom.setRetainSizeWhenHidden(true);
    busyBar->setSizePolicy(keepsItsRoom);
    keepReadable(*this);
    closeByKey(*this);
    layOut();
    connectControls();
}

void CnLoginWindow::layOut() {
    auto *lines = new QWidget(this);
    auto *linesColumn = new QVBoxLayout(lines);
    linesColumn->setContentsMargins(0, 0, 0, 0);
    linesColumn->addWidget(infoF);
    linesColumn->addWidget(errF);
    linesColumn->addStretch();
    lines->setMinimumHeight(MESSAGE_LINES * infoF->fontMetrics().lineSpacing());

    auto *links = new QHBoxLayout;
    links->setContentsMargins(0, 4, 0, 0);
    links->addWidget(linkA);
    links->addStretch();
    links->addWidget(linkB);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(MARGIN, 26, MARGIN, 22);
    column->setSpacing(10);
    column->addWidget(titleF);
    column->addWidget(noticeF, 0, Qt::AlignHCenter);
    column->addSpacing(4);
    column->addWidget(tabs);
    column->addWidget(group(acctL, {acctF}));
    column->addWidget(codeGroup = group(codeL, {codeF, sendB}));
    column->addWidget(passGroup = group(passL, {passF}));
    column->addLayout(agreeRows());
    column->addWidget(lines);
    column->addWidget(mainB);
    column->addWidget(busyBar);
    column->addLayout(links);
    setTabOrder(codeF, sendB); // in visual order
    setTabOrder(sendB, passF);
    setTabOrder(privacyB, mainB);
    setTabOrder(mainB, linkA);
}

/// A field with its label above, closer to it than to the next group.
QWidget *CnLoginWindow::group(QLabel *label, const QList<QWidget *> &controls) {
    auto *all = new QWidget(this);
    auto *column = new QVBoxLayout(all);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addWidget(label);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    for (QWidget *control : controls)
        row->addWidget(control);
    column->addLayout(row);
    return all;
}

QLayout *CnLoginWindow::agreeRows() {
    // English words need a space; Chinese title marks include it.
    const int space = ZH ? 0 : andF->fontMetrics().horizontalAdvance(u' ');
    agreeB->setFixedWidth(widthOf(*agreeB) + space); // without the margin that styles add after the text
    auto *links = new QHBoxLayout;
    links->setSpacing(space);
    for (QWidget *part : std::initializer_list<QWidget *>{termsB, andF, privacyB})
        links->addWidget(part);
    links->addStretch();
    const int wanted = agreeB->width() + links->sizeHint().width();
    auto *rows = new QBoxLayout(wanted <= CONTENT ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    rows->setSpacing(0);
    rows->addWidget(agreeB);
    rows->addLayout(links, 1);
    return rows;
}

void CnLoginWindow::connectControls() {
    const auto typed = [this](QLineEdit *field, LoginInput::Kind kind) {
        connect(field, &QLineEdit::textEdited, this,
                [this, kind](const QString &text) { input({.kind = kind, .text = text}); });
    };
    typed(acctF, LoginInput::Kind::Account);
    typed(codeF, LoginInput::Kind::Code);
    typed(passF, LoginInput::Kind::Password);
    const auto pressed = [this](QPushButton *button, LoginInput::Kind kind) {
        connect(button, &QPushButton::clicked, this, [this, kind] { input({.kind = kind}); });
    };
    pressed(sendB, LoginInput::Kind::SendCode);
    pressed(termsB, LoginInput::Kind::Terms);
    pressed(privacyB, LoginInput::Kind::Privacy);
    pressed(linkA, LoginInput::Kind::LinkA);
    pressed(linkB, LoginInput::Kind::LinkB);
    pressed(mainB, LoginInput::Kind::Submit);
    connect(agreeB, &QCheckBox::toggled, this,
            [this](bool on) { input({.kind = LoginInput::Kind::Agree, .index = on ? 1 : 0}); });
    tabs->onChosen = [this](int index) { input({.kind = LoginInput::Kind::Tab, .index = index}); };
    tabs->onClicked = [this] { input({.kind = LoginInput::Kind::TabClick}); };
}

void CnLoginWindow::apply(const CnLoginView &view) {
    titleF->setText(view.title);
    noticeF->setTextOrHide(view.notice);
    tabs->setVisible(!view.tabs.isEmpty());
    tabs->setTitles(view.tabs);
    tabs->setCurrent(view.tab);
    applyField(acctL, acctF, view.account, view.busy);
    applyField(codeL, codeF, view.code, view.busy);
    applyField(passL, passF, view.password, view.busy);
    codeGroup->setVisible(view.code.visible);
    passGroup->setVisible(view.password.visible);
    sendB->setText(view.sendText);
    if (focusWidget() == sendB && !view.sendEnabled)
        codeF->setFocus(); // the code is typed there; Qt would choose another field
    sendB->setEnabled(view.sendEnabled);
    for (QWidget *part : std::initializer_list<QWidget *>{agreeB, termsB, andF, privacyB})
        part->setVisible(view.agreeVisible);
    agreeB->setChecked(view.agree);
    linkA->setText(view.linkA);
    linkB->setText(view.linkB);
    linkB->setVisible(!view.linkB.isEmpty());
    infoF->setTextOrHide(view.info);
    errF->setTextOrHide(view.error);
    mainB->setText(view.mainText);
    setBusy(view.busy);
    fitHeight(*this, WIDTH);
}

void CnLoginWindow::applyField(QLabel *label, QLineEdit *field, const LoginFieldView &view, bool busy) {
    label->setText(view.label);
    field->setPlaceholderText(view.placeholder);
    field->setEnabled(!busy);
    if (field->text() != view.text) // setting a text moves the caret
        field->setText(view.text);
}

void CnLoginWindow::setBusy(bool busy) {
    for (QWidget *control : std::initializer_list<QWidget *>{tabs, agreeB, termsB, andF, privacyB, linkA, linkB, mainB})
        control->setEnabled(!busy);
    busyBar->setVisible(busy);
}

void CnLoginWindow::focus(LoginField field) {
    switch (field) {
    case LoginField::Account:
        return acctF->setFocus();
    case LoginField::Code:
        return codeF->setFocus();
    case LoginField::Password:
        return passF->setFocus();
    case LoginField::Agree:
        return agreeB->setFocus();
    }
}

void CnLoginWindow::bringUp(OpenedBy by) {
    keys.comesUp(by);
    bringToFront(*this);
}

void CnLoginWindow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        return mainB->click();
    EscWindow::keyPressEvent(event);
}

void CnLoginWindow::closeEvent(QCloseEvent *event) {
    EscWindow::closeEvent(event);
    input({.kind = LoginInput::Kind::Close});
}

CnLoginPanel::~CnLoginPanel() = default;

void CnLoginPanel::connect(std::function<void(const LoginInput &)> input) { sink = std::move(input); }

bool CnLoginPanel::present(const CnLoginView &view, OpenedBy by) {
    if (!window)
        window = std::make_unique<CnLoginWindow>([this](const LoginInput &input) {
            if (input.kind == LoginInput::Kind::Close)
                close();
            sink(input);
        });
    window->apply(view);
    const bool appears = !window->isVisible();
    if (appears)
        centreOnScreen(*window);
    window->bringUp(by);
    return appears;
}

void CnLoginPanel::apply(const CnLoginView &view) {
    if (window)
        window->apply(view);
}

void CnLoginPanel::focus(LoginField field) {
    if (window)
        window->focus(field);
}

void CnLoginPanel::close() {
    if (!window)
        return;
    window->hide();
    window.release()->deleteLater(); // the window may be the caller
}

} // namespace korvel
