#pragma once

#include <QLineEdit>
#include <functional>

namespace korvel {

/// A field for a six-digit code: takes digits of any script, typed, pasted or from an input method, shows them in two
/// groups and leaves the caret where the person has it.
class PairCodeField : public QLineEdit {
public:
    explicit PairCodeField(QWidget *parent = nullptr);
    /// Whether it holds a whole code.
    bool isComplete() const;
    /// Called after each change by the user.
    std::function<void()> onEdited;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void controlTextDidChange();
    void placeText();
};

} // namespace korvel
