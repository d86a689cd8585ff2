#pragma once

#include "e2ee/pair_view.h"
#include "platform/pair_panel.h"
#include "ui/text_styles.h"

#include <QPushButton>
#include <QWidget>

namespace korvel {

/// The pairing window: maps a PairView. Escape does nothing here; Return presses the main button.
class PairWindow final : public QWidget, public PairPanel {
public:
    PairWindow();

    void connect(Events events) override;
    bool isVisible() const override { return QWidget::isVisible(); }
    void present(const PairView &view) override;
    void apply(const PairView &view) override;
    void hide() override { QWidget::hide(); }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    Events events;
    ToneLabel *pairTitleF;
    ToneLabel *pairCodeF;
    ToneLabel *pairLineF;
    ToneLabel *pairHintF;
    ToneLabel *pairErrF;
    QPushButton *pairNewBtn;
    QPushButton *pairBtn;
};

} // namespace korvel
