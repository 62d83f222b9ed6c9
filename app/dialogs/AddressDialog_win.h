#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "app/AppState.h"

// Offers the e-mail addresses of the user's recipients, each once. Nothing when he chose none; where there is
// none to choose he is told so.
// Thread: the window thread. Runs messages.
std::optional<std::string> AskForAddress(HWND owner, const AppState& state);
