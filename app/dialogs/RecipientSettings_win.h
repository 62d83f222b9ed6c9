#pragma once

#include "app/AppState.h"
#include "send/BGSend.h"
#include "ui/LModalRunner.h"

// Shows the sheet "Recipient Send Settings": the user's recipients, and how e-mail is sent.
// Thread: the window thread. Runs messages.
void ShowRecipientSettings(const AppState& state, BGSend& queue, LModalRunner& runner);
