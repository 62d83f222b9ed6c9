#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

#include "app/AppState.h"
#include "store/SendToSettings.h"

// What the editor changes. Each returns a sentence for the user when it could not be done, else an empty
// text.
struct RecipientStore {
    // makesDefault is for a new recipient, of which the user wants it.
    std::function<std::string(const SendToSettings& recipient, bool makesDefault)> store;
    // Makes a recipient that exists the default one.
    std::function<std::string()> makeDefault;
};

// Edits one recipient: name, way of delivery, file format. index: its number; "Make Default" stores that as
// the default, at once for a recipient that exists, and after it is stored (nothing: a new one) otherwise. A
// recipient that cannot be stored leaves the editor open, with all that was typed. False when the user
// cancelled.
// Thread: the window thread. Runs messages.
bool EditRecipient(HWND owner, const AppState& state, std::optional<int32_t> index,
                   const SendToSettings& recipient, const RecipientStore& store);
