#pragma once

#include "store/CurrentUser.h"

// What start-up finds out and everything later needs: where the data lie and who dictates.
// Thread: the window thread.
struct AppState {
    DataFolder data;
    CurrentUser user;
    bool showIntroduction = false;
    uint32_t startTick = 0;  // ms, taken just before the main window is made
};
