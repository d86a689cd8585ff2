#pragma once

#include "ports/windows.h"
#include "ui/widgets/key_guard.h"

#include <QObject>

class QKeyEvent;
class QWidget;

namespace korvel {

/// Discards key events that the window's KeyGuard rejects.
class KeyFilter final : public QObject {
public:
    explicit KeyFilter(QWidget &window);
    /// Call before the window comes to the front.
    void comesUp(OpenedBy by);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    KeyPress pressOf(const QKeyEvent &event) const;

    QWidget &window;
    KeyGuard guard;
};

} // namespace korvel
