#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>

class QAbstractButton;

namespace korvel {

/// A row of choices of which one holds: mouse, arrow keys and assistive technology treat it as radio buttons.
class SegmentedControl final : public QWidget {
public:
    explicit SegmentedControl(int count, QWidget *parent = nullptr);
    void setTitles(const QStringList &titles);
    void setCurrent(int index);
    /// Called with the number of the choice when the user made another one.
    std::function<void(int)> onChosen;
    /// Called when the user clicked a choice with the pointer, also the one that holds; after onChosen.
    std::function<void()> onClicked;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<QAbstractButton *> segments;
};

} // namespace korvel
