#pragma once

namespace korvel::native {

/// Makes the window of an NSView a notice: at the level of the status bar, there while other applications are active,
/// and never activating this one.
void makeNotice(void *nsView);

/// Keeps the window of an NSView above ordinary windows, also while another application is active.
void makeFloating(void *nsView);

/// Puts the window of an NSView in front of the others of its level and gives it the keyboard.
void makeKeyAndOrderFront(void *nsView);

/// Puts the window of an NSView in front of the others of its level, whichever application is active.
void orderFrontRegardless(void *nsView);

} // namespace korvel::native
