#pragma once

#include <functional>

#include "app/AppState.h"
#include "app/transport/Listening_win.h"
#include "ui/LModalRunner.h"

// The sheet "User Settings": details of the current user, recording, playback, options. Stops the transport
// first. listening and isBusy: see RecordingPage.
// Thread: the window thread.
void ShowUserSettings(const AppState& state, LModalRunner& runner, Listening& listening,
                      const std::function<bool()>& isBusy);
