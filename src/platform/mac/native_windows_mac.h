#pragma once

#include <string>

namespace korvel::native {

/// Makes the window of an NSView a notice: at status bar level, visible while this application is inactive or hidden,
/// and never activating it.
void makeNotice(void *nsView);

/// Whether preventActivation() is available for the window of an NSView.
bool canPreventActivation(void *nsView);

/// Clicks on the window of an NSView no longer activate this application.
void preventActivation(void *nsView);

/// Keeps the window of an NSView above normal windows, also while another application is active.
void makeFloating(void *nsView);

/// Brings the window of an NSView to the front of its level and makes it the key window.
void makeKeyAndOrderFront(void *nsView);

/// Brings the window of an NSView to the front of its level, even if this application is inactive or hidden.
void orderFrontRegardless(void *nsView);

/// In points, from the top left corner of the first screen.
struct Point {
    double x = 0, y = 0;
};

/// The centre of the screen with the key window of any application.
Point middleOfMainScreen();

/// VoiceOver reads the text, regardless of the focus.
void announce(const std::string &text);

} // namespace korvel::native
