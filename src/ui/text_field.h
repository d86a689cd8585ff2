#pragma once

#include <QLineEdit>

namespace korvel {

/// A line edit whose edge can be told from the window in every look, at least 3 to 1 (WCAG 2.1, 1.4.11). Styles that
/// derive it from the window's colour leave it all but invisible on a dark one.
class TextField : public QLineEdit {
public:
    explicit TextField(QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void colourEdge();
    bool colouring = false;
};

} // namespace korvel
