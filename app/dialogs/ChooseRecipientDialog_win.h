#pragma once

#include "app/AppState.h"
#include "ui/LModalRunner.h"

// Lets the user choose a recipient from the list of his; the default one is chosen at first. The index, -1 when he
// cancels. Thread: the window thread.
int AskForRecipient(const AppState& state, LModalRunner& runner);
