#pragma once

#include "app/AppState.h"
#include "send/BGSend.h"
#include "ui/LModalRunner.h"

// Told when a deletion is pending, which leaves open whom a number means.
inline constexpr char kRecipientUnsettled[] =
    "A recipient is still being deleted, because one of the files of your recipients is open in another "
    "program or write-protected. Please try again.";
inline constexpr char kUserFileHeld[] = "Your user file is open in another program. Please try again.";

// Shows the sheet "Recipient Send Settings": the user's recipients, and how e-mail is sent.
// Thread: the window thread. Runs messages.
void ShowRecipientSettings(const AppState& state, BGSend& queue, LModalRunner& runner);
