#pragma once

#include <cstdint>
#include <optional>

#include "app/AppState.h"
#include "ui/LModalRunner.h"

// Lets the user choose, add and remove dictating users. Stops the transport first. Returns the user to be
// logged on: the chosen or added one, or the one who follows when the current one was removed; nothing when
// all stays as it is.
// Thread: the window thread.
std::optional<uint32_t> AskForUser(const AppState& state, LModalRunner& runner);
