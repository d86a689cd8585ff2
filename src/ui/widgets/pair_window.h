#pragma once

#include "e2ee/pair_view.h"
#include "ui/widgets/key_filter.h"
#include "ui/widgets/scrolling_text.h"

#include <QPushButton>
#include <QWidget>
#include <memory>

namespace korvel {

/// The pairing window: displays a PairView. Escape does nothing; Return presses the main button.
class PairWindow final : public QWidget {
public:
    explicit PairWindow(const PairPanel::Events &events);

    void present(const PairView &view, OpenedBy by);
    void apply(const PairView &view);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    ToneLabel *pairTitleF;
    ToneLabel *pairCodeF;
    ScrollingText *pairLineF;
    ScrollingText *pairHintF;
    ScrollingText *pairErrF;
    QPushButton *pairNewBtn;
    QPushButton *pairBtn;
    KeyFilter keys;
};

/// The window as a port: created when first shown.
class PairWindowPanel final : public PairPanel {
public:
    void connect(Events events) override;
    bool isVisible() const override { return window && window->isVisible(); }
    void present(const PairView &view, OpenedBy by) override;
    void apply(const PairView &view) override;
    void hide() override;

private:
    Events events;
    std::unique_ptr<PairWindow> window;
};

} // namespace korvel
