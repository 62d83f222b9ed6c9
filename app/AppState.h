#pragma once

#include "store/CurrentUser.h"

// Results of the start-up that the whole window uses: the data folder and the dictating user.
// Thread: the window thread.
struct AppState {
    DataFolder data;
    CurrentUser user;
    bool showIntroduction = false;
};
