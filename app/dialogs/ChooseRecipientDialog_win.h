#pragma once

#include <optional>

#include "app/AppState.h"
#include "store/SendToSettings.h"
#include "ui/LModalRunner.h"

// Lets the user choose one of his recipients, the default one being preselected. Stops the transport first.
// Returns the recipient as he was shown; nothing when the user cancels.
// Thread: the window thread.
std::optional<ShownRecipient> AskForRecipient(const AppState& state, LModalRunner& runner);
