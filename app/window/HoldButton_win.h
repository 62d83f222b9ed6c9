#pragma once

#include <windows.h>

// Makes a push button act while it is held. Its dialog gets WM_HOLDBUTTON with the button's control number
// and 1 when the button goes down (again when another holder takes it over), 0 when it comes up or is
// disabled. The button is held by the mouse, the space bar or a device. Attach a button once.
// Thread: the window thread.
void AttachHoldButton(HWND button);

// A device presses and releases the button, whichever program the user works in. False when the button is
// disabled or held by hand.
bool PressHoldButton(HWND button);
void ReleaseHoldButton(HWND button);
bool IsHeldByHand(HWND button);
