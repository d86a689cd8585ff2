#pragma once

#include "ports/windows.h"
#include "ui/widgets/key_filter.h"

#include <QDialog>
#include <QPointer>

class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace korvel {

class PairCodeField;

/// The window of one alert. Reports the user's answer once and deletes itself.
class AlertDialog final : public QDialog {
public:
    AlertDialog(const AlertView &view, std::function<void(const AlertAnswer &)> answered);

    /// In the order of the view.
    QList<QPushButton *> buttons() const { return answers; }
    QList<QLineEdit *> fields() const { return inputs; }
    /// Shows the dialog in front, with the focus.
    void bringUp(OpenedBy by);
    /// Called by Escape and by closing.
    void reject() override;

private:
    void answer(int button);
    void addWords(QVBoxLayout &column);
    QWidget *buttonRow();
    void addField(const AlertField &field, QVBoxLayout &column);
    void requireWholeCode(PairCodeField &code);

    const AlertView view;
    std::function<void(const AlertAnswer &)> answered;
    QList<QPushButton *> answers;
    QList<QLineEdit *> inputs;
    KeyFilter keys;
};

/// Alerts as windows above all others, without blocking the event loop.
class AlertWindow final : public Alerts {
public:
    ~AlertWindow() override;
    bool isOpen() const override;
    bool open(const AlertView &view, OpenedBy by, std::function<void(const AlertAnswer &)> answered) override;

private:
    QPointer<AlertDialog> current;
};

} // namespace korvel
