#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

#include "app/AppState.h"
#include "store/SendToSettings.h"

// Stores a recipient; makesDefault is for a new one, of which the user wants it. Returns a sentence for the
// user when it could not be, else an empty text.
using StoreRecipient = std::function<std::string(const SendToSettings& recipient, bool makesDefault)>;

// Edits one recipient: name, way of delivery, file format. index: its number; "Make Default" stores that as
// the default, at once for a recipient that exists, and after it is stored (nothing: a new one) otherwise. A
// recipient that cannot be stored leaves the editor open, with all that was typed. False when the user
// cancelled.
// Thread: the window thread. Runs messages.
bool EditRecipient(HWND owner, const AppState& state, std::optional<int32_t> index,
                   const SendToSettings& recipient, const StoreRecipient& store);
