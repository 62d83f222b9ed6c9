#include <gtest/gtest.h>

#include <array>
#include <set>
#include <vector>

#include "app/window/Contrast.h"
#include "app/window/ControlLayout.h"
#include "app/window/DictationRow.h"
#include "app/window/WindowFit.h"
#include "res/Ids.h"

TEST(WindowFit, WindowsAndDialogsOpenOnTheDesktop) {
    const ScreenArea desktop = {0, 0, 1024, 768};
    static const std::tuple<ScreenPoint, ScreenPoint, ScreenSize> kStored[] = {
        {{100, 100}, {100, 100}, {420, 300}},
        {{900, 700}, {604, 468}, {420, 300}},  // off the right and the bottom
        {{-50, -20}, {0, 0}, {420, 300}},      // a second screen that is gone
        {{30, 40}, {0, 0}, {1200, 900}},       // larger than the desktop
        {{2147483647, -2147483647 - 1}, {604, 0}, {420, 300}},
    };
    for (const auto& [stored, expected, window] : kStored)
        EXPECT_EQ(FitOnDesktop(stored, window, desktop), expected);
    // In the middle of the window, or as near to it as the desktop allows.
    EXPECT_EQ(CentreOver({100, 100, 500, 400}, {200, 100}, desktop), (ScreenPoint{200, 200}));
    EXPECT_EQ(CentreOver({900, 700, 1300, 1000}, {200, 100}, desktop), (ScreenPoint{824, 668}));
    EXPECT_EQ(CentreOver({0, 0, 280, 120}, {400, 300}, desktop), (ScreenPoint{0, 0}));
    EXPECT_TRUE(IsTopMost(ViewMode::Normal, true) && !IsTopMost(ViewMode::Maximized, true));
    for (const int32_t unknown : {99, -1}) EXPECT_EQ(ToViewMode(unknown), ViewMode::Normal);
}

TEST(Contrast, ASelectedRowIsSeenWithoutTheFocusInEveryScheme) {
    static const std::tuple<const char*, ListColours, bool> kCases[] = {
        {"standard", {0xFFFFFF, 0x000000, 0x800000, 0xFFFFFF}, true},
        {"light blue", {0xFFFFFF, 0x000000, 0xFF9933, 0xFFFFFF}, true},
        {"high contrast black", {0x000000, 0xFFFFFF, 0x800080, 0xFFFFFF}, false},
        {"pale selection", {0xFFFFFF, 0x000000, 0xD8D8D8, 0x000000}, false},
    };
    for (const auto& [scheme, colours, isBetween] : kCases) {
        const RowColours row = UnfocusedSelection(colours);
        EXPECT_EQ(row != (RowColours{colours.selected, colours.selectedText}), isBetween) << scheme;
        EXPECT_GE(BrightnessGap(row.background, colours.window), kLeastRowGap) << scheme;
        EXPECT_GE(BrightnessGap(row.background, row.text), kLeastTextGap) << scheme;
    }
}

TEST(Layout, WhatIsReadMostIsCutLast) {
    EXPECT_EQ(BeginWidth(200, 900, 60), 140) << "a long name leaves the typist whole";
    EXPECT_EQ(BeginWidth(200, 900, 300), 100);
    EXPECT_EQ(BeginWidth(200, 30, 300), 30);
    for (const auto& [room, width] : {std::pair(900, 150), {210, 135}, {117, 117}, {40, 60}})
        EXPECT_EQ(NameColumnWidth(room, 120, 150, 75), width) << room;
}

class LayoutTest : public ::testing::Test {
protected:
    void Lay(ViewMode view, int width, int height, DialogUnits units = {6, 13}) {
        m_size = {width, height};
        LayoutControls(view, m_size, units, m_places);
    }
    const ControlPlace& Of(int control) const {
        for (const ControlPlace& place : m_places)
            if (place.control == control) return place;
        static const ControlPlace kNone;
        ADD_FAILURE() << "control " << control << " is not placed";
        return kNone;
    }
    // Everything visible lies in the client area and nothing lies on anything else, but label and bar of
    // sending on the state line.
    void ExpectSound() const {
        std::set<int> seen;
        for (const ControlPlace& a : m_places) {
            EXPECT_TRUE(seen.insert(a.control).second) << a.control << " is placed twice";
            if (a.IsHidden()) continue;
            EXPECT_TRUE(a.x >= 0 && a.y >= 0 && a.x + a.width <= m_size.width &&
                        a.y + a.height <= m_size.height)
                << a.control << " sticks out";
            for (const ControlPlace& b : m_places) {
                const bool apart = a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y ||
                                   b.y + b.height <= a.y;
                const bool isMeant = IsOfSending(a, b) || IsOfSending(b, a);
                EXPECT_TRUE(&a == &b || b.IsHidden() || apart || isMeant)
                    << a.control << " lies on " << b.control;
            }
        }
    }

    static bool IsOfSending(const ControlPlace& a, const ControlPlace& b) {
        return a.control == IDC_LOGGEDON && (b.control == IDC_SENDLABEL || b.control == IDC_SENDPROGRESS);
    }

    std::array<ControlPlace, kControlCount> m_places;
    ScreenSize m_size = {};
};

TEST_F(LayoutTest, EveryViewIsSoundAtTheUsualFontSizes) {
    for (const DialogUnits units : {DialogUnits{6, 13}, DialogUnits{7, 13}, DialogUnits{8, 16}}) {
        for (const ViewMode view : {ViewMode::Compact, ViewMode::Normal}) {
            const ScreenSize size = ClientUnits(view);
            Lay(view, size.width * units.x4 / 4, size.height * units.y8 / 8, units);
            ExpectSound();
        }
        for (const ScreenSize size : {ScreenSize{1016, 700}, ScreenSize{640, 440}}) {
            Lay(ViewMode::Maximized, size.width, size.height, units);
            ExpectSound();
        }
    }
}

TEST_F(LayoutTest, TheMaximizedViewGivesTheListItsRoomAndLeavesTheTransportWhereItWas) {
    constexpr int kRow[] = {IDC_RECORD, IDC_STOP, IDC_PLAY, IDC_GOTOSTART, IDC_REWIND, IDC_FASTFORWARD};
    Lay(ViewMode::Compact, 277, 113);
    EXPECT_TRUE(Of(IDC_LIST).IsHidden());
    EXPECT_GE(Of(IDC_POSITION).width, 116) << "239:57 / 239:57 in one line";
    std::vector<ControlPlace> compact;
    for (int control : kRow) compact.push_back(Of(control));
    Lay(ViewMode::Maximized, 1016, 700);
    EXPECT_GT(Of(IDC_LIST).height, 350);
    EXPECT_GT(Of(IDC_NOTES).height, 100);
    for (const ControlPlace& before : compact) {
        const ControlPlace& now = Of(before.control);
        EXPECT_TRUE(before.x == now.x && before.y == now.y && before.width == now.width) << now.control;
    }
}
