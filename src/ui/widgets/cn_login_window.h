#pragma once

#include "account/cn_login_view.h"
#include "ui/widgets/key_filter.h"
#include "ui/widgets/text_styles.h"
#include "ui/widgets/windows.h"

#include <memory>

class QBoxLayout;
class QCheckBox;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace korvel {

class LinkButton;
class ScrollingText;
class SegmentedControl;
class TextButton;

/// The mainland sign-in window: displays a CnLoginView. Return submits, Escape closes.
class CnLoginWindow final : public EscWindow {
public:
    explicit CnLoginWindow(std::function<void(const LoginInput &)> input);

    void apply(const CnLoginView &view);
    void focus(LoginField field);
    /// Shows the window in front, with the focus.
    void bringUp(OpenedBy by);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void layOut();
    QWidget *group(QLabel *label, const QList<QWidget *> &controls);
    QLayout *agreeRows();
    void connectControls();
    void applyField(QLabel *label, QLineEdit *field, const LoginFieldView &view, bool busy);
    void setBusy(bool busy);

    const std::function<void(const LoginInput &)> input;
    ToneLabel *titleF, *noticeF;
    SegmentedControl *tabs;
    QWidget *codeGroup, *passGroup;
    ToneLabel *acctL, *codeL, *passL;
    QLineEdit *acctF, *codeF, *passF;
    TextButton *sendB;
    QCheckBox *agreeB;
    LinkButton *termsB, *privacyB, *linkA, *linkB;
    ToneLabel *andF, *infoF;
    ScrollingText *errF;
    QPushButton *mainB;
    QProgressBar *busyBar;
    KeyFilter keys;
};

/// The window as a port: created when shown, destroyed when closed.
class CnLoginPanel final : public LoginPanel {
public:
    ~CnLoginPanel() override;
    void connect(std::function<void(const LoginInput &)> input) override;
    bool present(const CnLoginView &view, OpenedBy by) override;
    void apply(const CnLoginView &view) override;
    void focus(LoginField field) override;
    void close() override;

private:
    std::function<void(const LoginInput &)> sink;
    std::unique_ptr<CnLoginWindow> window;
};

} // namespace korvel
