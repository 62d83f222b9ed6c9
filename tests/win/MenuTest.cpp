#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <map>
#include <string>

#include "app/window/KeyTable.h"
#include "app/window/WindowLayout_win.h"
#include "res/Ids.h"
#include "tests/unit/TempFolder.h"

namespace {

// A key as menus write it: "Ctrl+N", "F5", "Home".
KeyPress Pressed(std::string text) {
    static const std::map<std::string, int> kNames = {
        {"Del", VK_DELETE}, {"End", VK_END}, {"Esc", VK_ESCAPE}, {"Home", VK_HOME}, {"Ins", VK_INSERT}};
    KeyPress press;
    press.ctrl = text.starts_with("Ctrl+");
    press.shift = text.starts_with("Shift+");
    text.erase(0, text.rfind('+') + 1);
    const int functionKey = text.size() == 1 ? text[0] : VK_F1 - 1 + std::atoi(text.c_str() + 1);
    press.key = kNames.contains(text) ? kNames.at(text) : functionKey;
    return press;
}

int ExpectKeysOfItems(HMENU menu) {
    int keys = 0;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if (const HMENU sub = GetSubMenu(menu, i)) keys += ExpectKeysOfItems(sub);
        char buffer[100] = "";
        GetMenuStringA(menu, static_cast<UINT>(i), buffer, sizeof buffer, MF_BYPOSITION);
        const std::string text = buffer;
        const size_t tab = text.find('\t');
        if (tab == std::string::npos) continue;
        if (text.ends_with("Alt+F4") || text.ends_with("\tF1")) continue;  // those are the platform's
        const KeyAction action = ActionOf(Pressed(text.substr(tab + 1)));
        const int wound = action.direction == WindDirection::Back ? CM_REWIND : CM_FASTFORWARD;
        EXPECT_EQ(GetMenuItemID(menu, i), action.kind == KeyAction::Kind::Wind ? wound : action.command)
            << text;
        ++keys;
    }
    return keys;
}

}  // namespace

TEST(Menu, EachItemHasTheKeyThatItNames) {
    for (const int resource : {IDM_MAIN, IDM_DICTATION}) {
        const HMENU menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(resource));
        EXPECT_GT(ExpectKeysOfItems(menu), 3);
        DestroyMenu(menu);
    }
}

TEST(Menu, TicksTheViewThatIsChosen) {
    const TempFolder temp;
    AppState state;
    state.data = DataFolder::FromText(temp.Path().View());
    const HMENU menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDM_MAIN));
    const HWND window =
        CreateWindowA("STATIC", "", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, menu, nullptr, nullptr);
    const auto isTicked = [menu](UINT item) {
        return (GetMenuState(menu, item, MF_BYCOMMAND) & MF_CHECKED) != 0;
    };
    WindowLayout layout(state);
    layout.Attach(window);
    layout.SetView(ViewMode::Compact);
    layout.ToggleFloat();
    EXPECT_TRUE(isTicked(CM_VIEW_COMPACT) && isTicked(CM_VIEW_FLOAT));
    EXPECT_FALSE(isTicked(CM_VIEW_NORMAL));
    DestroyWindow(window);
}
