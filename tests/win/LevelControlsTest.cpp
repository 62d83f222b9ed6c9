#include <array>

#include "audio/device/LDBDisplay_win.h"
#include "tests/unit/TestKit.h"
#include "ui/LDBEdit.h"

// The level meter and the level's edit control as real windows.

namespace {

constexpr COLORREF kDark = RGB(0x30, 0x30, 0x30);
constexpr COLORREF kGreen = RGB(0x00, 0xC0, 0x00);
constexpr COLORREF kRed = RGB(0xE0, 0x00, 0x00);
constexpr int kWidth = 400;
constexpr int kHeight = 9;
constexpr UINT_PTR kMeterTimer = 1;
constexpr DWORD kDeadlineMs = 10000;

struct WindowTraits {
    using Type = HWND;
    static Type None() { return nullptr; }
    static void Close(Type h) {
        if (IsWindow(h)) DestroyWindow(h);
    }
};
using Window = LOwned<WindowTraits>;

Window MakeWindow(const char* className, DWORD style) {
    return Window(CreateWindowExA(WS_EX_TOPMOST, className, "", style, 20, 20, kWidth, kHeight, nullptr,
                                  nullptr, GetModuleHandleA(nullptr), nullptr));
}

class MeterWindow : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(LDBDisplayRegister(GetModuleHandleA(nullptr)));
        ASSERT_TRUE(LDBDisplayRegister(GetModuleHandleA(nullptr)));
        m_window = MakeWindow("LDBDisplay", WS_POPUP | WS_VISIBLE);
        ASSERT_TRUE(m_window);
        UpdateWindow(Meter());
        EXPECT_EQ(m_traces.All(), "") << "the bitmaps are missing";
    }
    HWND Meter() const { return m_window.Get(); }
    COLORREF Pixel(int x, int y) const {
        UpdateWindow(Meter());
        const HDC dc = GetDC(Meter());
        const COLORREF colour = GetPixel(dc, x, y);
        ReleaseDC(Meter(), dc);
        return colour;
    }
    bool IsLit() const {
        for (int segment = 0; segment < kWidth / 4; ++segment)
            if (Pixel(segment * 4, 0) != kDark) return true;
        return false;
    }
    // Of the first pixel of the segments with these numbers.
    std::vector<COLORREF> Segments(std::initializer_list<int> numbers, int y = 0) const {
        std::vector<COLORREF> colours;
        for (const int number : numbers) colours.push_back(Pixel(number * 4, y));
        return colours;
    }

    TraceLog m_traces;
    Window m_window;
};

using Colours = std::vector<COLORREF>;

}  // namespace

TEST_F(MeterWindow, DrawsWithTheBitmapsAndGreysWhenDisabled) {
    LDBDisplaySetLevel(Meter(), 9);
    EXPECT_EQ(Segments({0, 87, 88, 93, 94}), (Colours{kGreen, kGreen, kRed, kRed, kDark}));
    EXPECT_EQ(Pixel(2, 0), kDark) << "not the pattern of the bitmap";
    const COLORREF grey = GetSysColor(COLOR_BTNSHADOW);
    EnableWindow(Meter(), FALSE);
    LDBDisplaySetLevel(Meter(), 12);
    EXPECT_EQ(Segments({0, 88, 99}), (Colours{grey, grey, grey}));
    EnableWindow(Meter(), TRUE);
    EXPECT_EQ(Segments({0, 88, 99}), (Colours{kGreen, kRed, kRed}));
}

TEST_F(MeterWindow, ShowsTwoChannelsAboveEachOther) {
    LDBDisplaySetLevels(Meter(), 0, -127);
    EXPECT_EQ(Segments({0, 74, 75}, 0), (Colours{kGreen, kGreen, kDark}));
    EXPECT_EQ(Pixel(0, kHeight / 2), GetSysColor(COLOR_BTNFACE));
    EXPECT_EQ(Segments({0, 74, 75}, kHeight - 1), (Colours{kDark, kDark, kDark}));
}

TEST_F(MeterWindow, RepaintsOnlyWhatChanges) {
    LDBDisplaySetLevel(Meter(), -24);
    UpdateWindow(Meter());
    LDBDisplaySetLevel(Meter(), -24);
    EXPECT_FALSE(GetUpdateRect(Meter(), nullptr, FALSE));
    LDBDisplaySetLevel(Meter(), -12);
    RECT changed = {};
    EXPECT_TRUE(GetUpdateRect(Meter(), &changed, FALSE));
    EXPECT_EQ(changed.left, 100);
    EXPECT_EQ(changed.right, 200);
}

TEST_F(MeterWindow, HasATimerOnlyWhileSomethingFalls) {
    LDBDisplaySetLevel(Meter(), 0);
    EXPECT_FALSE(KillTimer(Meter(), kMeterTimer)) << "a steady level needs none";
    LDBDisplaySetLevel(Meter(), -127);
    EXPECT_EQ(Segments({74, 75}), (Colours{kGreen, kDark})) << "the peak is held";
    const DWORD begin = GetTickCount();
    MSG message;
    while (IsLit() && GetTickCount() - begin < kDeadlineMs && GetMessageA(&message, Meter(), 0, 0) > 0)
        DispatchMessageA(&message);
    EXPECT_FALSE(IsLit());
    EXPECT_GT(GetTickCount() - begin, 3000u) << "1.5 s of holding and 2 s of falling";
    while (PeekMessageA(&message, Meter(), 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    EXPECT_FALSE(KillTimer(Meter(), kMeterTimer));
}

TEST(LevelEdit, AcceptsLevelsAndForgetsRubbishWhenTheFocusLeaves) {
    static const struct {
        const char* typed;
        const char* shown;
        int8_t level;
    } kCases[] = {
        {"-20", "-20dB", -20},  {"-20 dB", "-20dB", -20}, {"--", "--dB", -127}, {"300", "127dB", 127},
        {"-128", "--dB", -127}, {"", "-5dB", -5},         {"5-", "-5dB", -5},   {"dB", "-5dB", -5},
    };
    const Window window = MakeWindow("EDIT", WS_POPUP);
    LDBEdit edit;
    edit.Attach(window.Get(), -5);
    for (const auto& c : kCases) {
        edit.SetLevel(-5);
        SendMessageA(window.Get(), EM_SETSEL, 0, -1);
        SendMessageA(window.Get(), WM_CHAR, '\b', 0);
        for (const char* key = c.typed; *key != 0; ++key) {
            SendMessageA(window.Get(), WM_CHAR, static_cast<WPARAM>(*key), 0);
            SendMessageA(window.Get(), WM_CHAR, 'x', 0);  // is not taken
        }
        EXPECT_EQ(LWindowText(window.Get()), c.typed);
        EXPECT_EQ(edit.Level(), c.level) << c.typed << ", as a default button would ask";
        SendMessageA(window.Get(), WM_KILLFOCUS, 0, 0);
        EXPECT_EQ(LWindowText(window.Get()), c.shown);
        EXPECT_EQ(edit.Level(), c.level);
    }
}

TEST(LevelEdit, StepsWithTheArrowKeysAndOutlivesItsControl) {
    Window window = MakeWindow("EDIT", WS_POPUP);
    LDBEdit edit;
    edit.Attach(window.Get(), -126);
    static const struct {
        WPARAM key;
        const char* shown;
    } kSteps[] = {{VK_DOWN, "--dB"}, {VK_DOWN, "--dB"}, {VK_UP, "-126dB"}, {VK_UP, "-125dB"}};
    for (const auto& step : kSteps) {
        SendMessageA(window.Get(), WM_KEYDOWN, step.key, 0);
        EXPECT_EQ(LWindowText(window.Get()), step.shown);
    }
    SetWindowTextA(window.Get(), "-30");
    window.Reset();
    EXPECT_EQ(edit.Level(), -30);
    edit.SetLevel(3);
    EXPECT_EQ(edit.Level(), 3);
}
