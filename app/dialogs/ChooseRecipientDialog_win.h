#pragma once

#include "app/AppState.h"
#include "ui/LModalRunner.h"

// Lets the user choose one of his recipients, the default one being preselected. Stops the transport first.
// Returns the recipient's index, -1 when the user cancels.
// Thread: the window thread.
int AskForRecipient(const AppState& state, LModalRunner& runner);
