#pragma once

#include <string>

namespace korvel::native {

/// Makes the window of an NSView a notice: at the level of the status bar, there while other applications are active or
/// this one is hidden, and never activating this one when it appears.
void makeNotice(void *nsView);

/// Whether preventActivation() can be called for the window of an NSView.
bool canPreventActivation(void *nsView);

/// Lets clicks on the window of an NSView leave the active application as it is.
void preventActivation(void *nsView);

/// Keeps the window of an NSView above ordinary windows, also while another application is active.
void makeFloating(void *nsView);

/// Puts the window of an NSView in front of the others of its level and gives it the keyboard.
void makeKeyAndOrderFront(void *nsView);

/// Puts the window of an NSView in front of the others of its level, whichever application is active, also when this
/// one is hidden.
void orderFrontRegardless(void *nsView);

/// In points, from the upper left corner of the first screen.
struct Point {
    double x = 0, y = 0;
};

/// The middle of the screen that has the window with the keyboard, whichever application's it is.
Point middleOfMainScreen();

/// Has VoiceOver read a text, whatever has the keyboard.
void announce(const std::string &text);

} // namespace korvel::native
