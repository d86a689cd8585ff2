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

/// Types the right code on the phone. The window of that screenshot reports it and closes automatically; one notice
/// shows and disappears.
void pairNow(Tour &tour, const QString &name);

} // namespace korvel::sim
