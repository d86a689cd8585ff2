#pragma once

#include "simulator/tour/checks.h"

namespace korvel::sim {

/// One step of the tour.
struct Step {
    QString name;
    void (*take)(Tour &); ///< Throws StepFailed.
};

QList<Step> launchSteps();
QList<Step> menuSteps();
QList<Step> pairingSteps();
QList<Step> deviceSteps();
QList<Step> alarmSteps();
QList<Step> speechSteps();
QList<Step> outageSteps();
QList<Step> syncSteps();
QList<Step> signInSteps();
QList<Step> permissionSteps();
QList<Step> updateSteps();
QList<Step> quitSteps();

/// The right code is typed on the phone: the window of that screenshot says so and closes itself, and one notice shows
/// and goes.
void pairNow(Tour &tour, const QString &name);

} // namespace korvel::sim
