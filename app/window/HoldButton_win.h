#pragma once

#include <windows.h>

// Makes a push button act while it is held: its dialog gets WM_HOLDBUTTON with the button's control number and
// 1 when it goes down (again when another takes it over), 0 when it comes up again or can no longer be held.
// Mouse messages and the space bar count, and the presses of devices. A button is attached once.
// Thread: the window thread.
void AttachHoldButton(HWND button);

// A device presses and releases it, whatever program the user is working in. False when the button is disabled
// or held by hand.
bool PressHoldButton(HWND button);
void ReleaseHoldButton(HWND button);
