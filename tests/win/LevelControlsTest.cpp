#include "audio/device/LDBDisplay_win.h"
#include "tests/unit/TestKit.h"
#include "ui/LDBEdit.h"

// The level meter and the level's edit control as real windows.

namespace {

const struct Colour {
    char letter;
    COLORREF colour;
} kColours[] = {{'.', RGB(0x30, 0x30, 0x30)},
                {'G', RGB(0x00, 0xC0, 0x00)},
                {'R', RGB(0xE0, 0x00, 0x00)},
                {'-', GetSysColor(COLOR_BTNSHADOW)}};
constexpr int kWidth = 400;
constexpr UINT_PTR kMeterTimer = 1;

// Gone with its test, unless that has destroyed it.
struct Window {
    Window(const char* className, DWORD style)
        : handle(CreateWindowExA(WS_EX_TOPMOST, className, "", style, 20, 20, kWidth, 9, nullptr, nullptr,
                                 GetModuleHandleA(nullptr), nullptr)) {}
    ~Window() { DestroyWindow(handle); }
    const HWND handle;
};

// A letter for the first pixel of each of the meter's segments.
std::string Show(HWND meter) {
    UpdateWindow(meter);
    const HDC dc = GetDC(meter);
    std::string text;
    for (int x = 0; x < kWidth; x += 4) {
        const auto* name = std::ranges::find(kColours, GetPixel(dc, x, 0), &Colour::colour);
        text += name == std::end(kColours) ? '?' : name->letter;
    }
    ReleaseDC(meter, dc);
    return text;
}

}  // namespace

TEST(MeterWindow, DrawsWithTheBitmapsWhatChangesAndHasATimerWhileSomethingFalls) {
    TraceLog traces;
    ASSERT_TRUE(LDBDisplayRegister(GetModuleHandleA(nullptr)));
    const Window window("LDBDisplay", WS_POPUP | WS_VISIBLE);
    const HWND meter = window.handle;
    const std::string green(88, 'G'), dark(100, '.');
    LDBDisplaySetLevel(meter, 9);
    EXPECT_EQ(Show(meter), green + "RRRRRR......");
    EXPECT_EQ(traces.All(), "") << "the bitmaps are missing";
    EnableWindow(meter, FALSE);
    EXPECT_EQ(Show(meter), std::string(100, '-'));
    EnableWindow(meter, TRUE);
    EXPECT_EQ(Show(meter), green + "RRRRRR......");

    LDBDisplaySetLevel(meter, 12);
    RECT changed = {};
    EXPECT_TRUE(GetUpdateRect(meter, &changed, FALSE));
    EXPECT_EQ(changed.left, 94 * 4);
    EXPECT_EQ(Show(meter), green + std::string(12, 'R'));
    LDBDisplaySetLevel(meter, 12);
    EXPECT_FALSE(GetUpdateRect(meter, nullptr, FALSE) || KillTimer(meter, kMeterTimer)) << "nothing changes";

    LDBDisplaySetLevel(meter, -127);
    const DWORD begin = GetTickCount();
    bool isHeld = false;
    MSG message;
    while (Show(meter) != dark && GetTickCount() - begin < 10000 && GetMessageA(&message, meter, 0, 0) > 0) {
        DispatchMessageA(&message);
        isHeld |= Show(meter).ends_with(".R");
    }
    EXPECT_TRUE(isHeld) << "the bar falls first, then the peak";
    EXPECT_EQ(Show(meter), dark);
    while (PeekMessageA(&message, meter, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    EXPECT_FALSE(KillTimer(meter, kMeterTimer)) << "nothing falls any more";
}

TEST(LevelEdit, AcceptsLevelsAndForgetsRubbishWhenTheFocusLeavesAndOutlivesItsControl) {
    static const std::tuple<const char*, const char*, int8_t> kCases[] = {
        {"-20 dB", "-20dB", -20}, {"--", "--dB", -127}, {"300", "127dB", 127}, {"-128", "--dB", -127},
        {"", "-5dB", -5},         {"5-", "-5dB", -5},   {"dB", "-5dB", -5},
    };
    LDBEdit edit;
    {
        const Window window("EDIT", WS_POPUP);
        edit.Attach(window.handle, -5);
        for (const auto& [typed, shown, level] : kCases) {
            edit.SetLevel(-5);
            SendMessageA(window.handle, EM_SETSEL, 0, -1);
            SendMessageA(window.handle, WM_CHAR, '\b', 0);
            for (const char* key = typed; *key != 0; ++key) {
                SendMessageA(window.handle, WM_CHAR, static_cast<WPARAM>(*key), 0);
                SendMessageA(window.handle, WM_CHAR, 'x', 0);  // is not taken
            }
            EXPECT_EQ(LWindowText(window.handle), typed);
            EXPECT_EQ(edit.Level(), level) << typed << ", as a default button would ask";
            SendMessageA(window.handle, WM_KILLFOCUS, 0, 0);
            EXPECT_EQ(LWindowText(window.handle), shown);
        }
        edit.SetLevel(-126);
        for (const char* shown : {"--dB", "--dB"}) {
            SendMessageA(window.handle, WM_KEYDOWN, VK_DOWN, 0);
            EXPECT_EQ(LWindowText(window.handle), shown);
        }
        SendMessageA(window.handle, WM_KEYDOWN, VK_UP, 0);
        EXPECT_EQ(LWindowText(window.handle), "-126dB");
        SetWindowTextA(window.handle, "-30");
    }
    EXPECT_EQ(edit.Level(), -30);
}
