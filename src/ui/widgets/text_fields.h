#pragma once

#include <QLineEdit>
#include <functional>

namespace korvel {

/// A field for a six-digit code. Accepts digits of any script, typed, pasted or from an input method. Shows them in two
/// groups and keeps the caret in place.
class PairCodeField : public QLineEdit {
public:
    explicit PairCodeField(QWidget *parent = nullptr);
    /// Whether it contains a complete code.
    bool isComplete() const;
    /// Called after each change by the user.
    std::function<void()> onEdited;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void controlTextDidChange();
    void placeText();
};

/// Hides the content of a field on the screen and in accessibility notifications. Those of Qt's own password fields
/// contain the password.
void makeSecret(QLineEdit &field);

} // namespace korvel
