#pragma once

#include <QList>
#include <QString>

#include <functional>

namespace korvel::sim {

class Tour;

// One step of the tour.
struct Step {
    QString name;
    // Takes the step. Empty when all showed what it should, else one line saying what did not.
    std::function<QString(Tour &)> take;
};

// The tray comes up, connects and says so.
QList<Step> launchSteps();
// Its menu opens with either mouse button, it keeps quiet while nothing changes, and outlives the panel.
QList<Step> menuSteps();
// The agent dies and comes back.
QList<Step> outageSteps();
// Sync is paused and resumed from the menu.
QList<Step> syncSteps();
// It is quit from the menu.
QList<Step> quitSteps();

} // namespace korvel::sim
