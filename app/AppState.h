#pragma once

#include "store/CurrentUser.h"

// What start-up finds out and everything later needs: where the data lie and who dictates.
// Thread: the window thread.
struct AppState {
    DataFolder data;
    CurrentUser user;
    bool showIntroduction = false;
};
