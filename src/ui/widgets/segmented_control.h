#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>

class QAbstractButton;

namespace korvel {

/// A row of exclusive choices. Mouse, arrow keys and assistive technology treat them as radio buttons.
class SegmentedControl final : public QWidget {
public:
    explicit SegmentedControl(int count, QWidget *parent = nullptr);
    void setTitles(const QStringList &titles);
    void setCurrent(int index);
    /// Called with the index of the choice when the user changes it.
    std::function<void(int)> onChosen;
    /// Called when the user clicks a choice, including the current one; after onChosen.
    std::function<void()> onClicked;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<QAbstractButton *> segments;
};

} // namespace korvel
