// The two window messages that Traywell and the client programs share. Both
// sides register them by the same names, so they agree on the numbers.
#pragma once

// Asks a client main window whether it may close now: sent with both
// parameters 0; the client answers 0 to agree, anything else to refuse.
// Registered as "Quillon Software Traywell Can Exit Application".
// Returns the message number; 0 only if the system refuses to register it.
// Any thread.
unsigned GetTraywellCanExitApplicationMessage();

// Tells a client main window to restore itself and show one session: posted
// with wParam 0 and lParam the session number (0: the window's current one).
// Registered as "Quillon Software Traywell Show Selection". Any thread.
unsigned GetTraywellShowSelectionMessage();
