#pragma once

#include "ports/opened_by.h"
#include "ui/widgets/key_guard.h"

#include <QObject>

class QKeyEvent;
class QWidget;

namespace korvel {

/// Keeps the keys from a window that its guard does not let through.
class KeyFilter final : public QObject {
public:
    explicit KeyFilter(QWidget &window);
    /// To be called before the window comes to the front.
    void comesUp(OpenedBy by);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    KeyPress pressOf(const QKeyEvent &event) const;

    QWidget &window;
    KeyGuard guard;
};

} // namespace korvel
