#pragma once

#include <windows.h>

#include <optional>

#include "app/AppState.h"
#include "store/SendToSettings.h"

// Edits one recipient: name, way of delivery, file format. Returns it as the user accepted it; nothing when
// he cancelled. index: its number, or the number that a new one will have; "Make Default" stores that as the
// default at once.
// Thread: the window thread. Runs messages.
std::optional<SendToSettings> EditRecipient(HWND owner, const AppState& state, int32_t index,
                                            const SendToSettings& recipient);
