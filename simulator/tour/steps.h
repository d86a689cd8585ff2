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
// A Mac that is not paired: waiting, a code, a wrong one, a refreshed one, the right one.
QList<Step> pairingSteps();
// Other devices ask to join; one is allowed, one denied.
QList<Step> deviceSteps();
// A security alarm is answered, and after an encryption reset the Mac is paired again.
QList<Step> alarmSteps();
// Speech recognition is installed.
QList<Step> speechSteps();
// The agent dies and comes back.
QList<Step> outageSteps();
// Sync is paused and resumed from the menu.
QList<Step> syncSteps();
// Nobody is signed in; somebody signs in, pairs the Mac and signs out again.
QList<Step> signInSteps();
// Somebody signs in again without the pointer.
QList<Step> keyboardSteps();
// Permissions are missing, asked for and granted by hand; a broken installation is repaired.
QList<Step> permissionSteps();
// An update is announced, downloaded and installed.
QList<Step> updateSteps();
// It is quit from the menu.
QList<Step> quitSteps();

// The right code is typed on the phone: the window of that screenshot says so and closes itself, and one notice shows
// and goes. What went wrong; empty if nothing.
QString pairNow(Tour &tour, const QString &name);

} // namespace korvel::sim
