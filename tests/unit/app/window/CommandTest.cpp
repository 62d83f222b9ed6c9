#include <gtest/gtest.h>

#include <functional>

#include "app/window/CommandState.h"
#include "app/window/DeviceCommands.h"
#include "app/window/KeyTable.h"
#include "hardware/HotKeyHold.h"
#include "res/Ids.h"

// A window whose transport records or does not, and a clock that is set by hand.
class Pedal final : private DeviceCommands::Target {
public:
    Pedal() { s_nowMs = 0; }
    void Press(uint32_t at, InputControl control = InputControl::Pedal1, int index = CI_RECORD) {
        s_nowMs = at;
        m_devices.CommandPress(control, index);
    }
    void Release(uint32_t at, uint32_t holdLimitMs = kHoldLimitMs,
                 InputControl control = InputControl::Pedal1, int index = CI_RECORD) {
        s_nowMs = at;
        m_devices.CommandRelease(control, index, holdLimitMs);
    }
    void EndProcess() {
        isProcessRunning = false;
        m_devices.PressAgain();
    }
    bool IsRunning() const { return m_runs != 0; }
    // The command that runs, 0 for none.
    int Runs() const { return m_runs; }
    bool isProcessRunning = false;
    int told = 0;                         // that a press has to wait
    std::function<void()> whileItStarts;  // what happens before the recording runs

private:
    bool Give(int command) override {
        if (command == CM_STOP) m_runs = 0;
        const bool isRefused = m_runs == command;
        if (command == CM_STOP || isRefused || isProcessRunning) return false;
        if (whileItStarts) whileItStarts();
        m_runs = command;
        return true;
    }
    bool IsRecording() const override { return m_runs == CM_RECORD; }
    bool IsPlaying() const override { return m_runs == CM_PLAY; }
    bool IsProcessRunning() const override { return isProcessRunning; }
    bool HoldWinding(WindDirection, bool) override { return false; }
    void OpenWindow() override {}
    void TellWaiting() override { ++told; }
    void MinimizeWindow() override {}
    static uint32_t Now() { return s_nowMs; }

    static inline uint32_t s_nowMs = 0;
    int m_runs = 0;
    DeviceCommands m_devices{*this, Now};
};

TEST(DeviceCommands, ATapRunsOnUntilTheNextTapAndAHoldEndsWithItsRelease) {
    static const struct {
        const char* what;
        uint32_t press1, release1;
        bool runsAfter1;
        uint32_t press2, release2;
        bool runsAfter2;
    } kCases[] = {
        {"tap, tap", 1000, 1200, true, 5000, 5100, false},
        {"tap at the limit", 1000, 1500, true, 5000, 5100, false},
        {"hold, hold", 1000, 1501, false, 5000, 6000, false},
        {"hold, tap", 1000, 3000, false, 5000, 5100, true},
        {"the counter wraps", 0xFFFFFF00u, 0x00000020u, true, 0x00000900u, 0x00000A00u, false},
    };
    for (const auto& c : kCases) {
        Pedal pedal;
        pedal.Press(c.press1);
        pedal.Release(c.release1);
        EXPECT_EQ(pedal.IsRunning(), c.runsAfter1) << c.what;
        pedal.Press(c.press2);
        pedal.Release(c.release2);
        EXPECT_EQ(pedal.IsRunning(), c.runsAfter2) << c.what;
    }
}

TEST(DeviceCommands, APedalThatIsHeldWhenAProcessEndsRecordsFromThenOn) {
    for (const bool isReleased : {false, true}) {
        Pedal pedal;
        pedal.isProcessRunning = true;
        pedal.Press(1000);
        if (isReleased) pedal.Release(1200);
        pedal.EndProcess();
        EXPECT_EQ(pedal.IsRunning(), !isReleased);
        EXPECT_EQ(pedal.told, 1) << "he does not look at the window";
        pedal.Release(3000);
        EXPECT_FALSE(pedal.IsRunning());
    }
    Pedal pedal;
    pedal.Press(1000);
    pedal.Release(1100);
    pedal.isProcessRunning = true;
    pedal.Press(5000);
    pedal.Release(5100);
    EXPECT_FALSE(pedal.IsRunning()) << "tapped off while a file is loaded";
}

TEST(DeviceCommands, WhatThePedalDoesWhileTheRecordingIsBeingPreparedCounts) {
    for (const uint32_t heldMs : {200u, 900u}) {
        Pedal pedal;
        pedal.whileItStarts = [&] { pedal.Release(1000 + heldMs); };
        pedal.Press(1000);
        EXPECT_EQ(pedal.IsRunning(), heldMs <= kHoldLimitMs) << heldMs;
        pedal.whileItStarts = nullptr;
        pedal.Press(9000);
        pedal.Release(9100);
        EXPECT_EQ(pedal.IsRunning(), heldMs > kHoldLimitMs) << heldMs << ", tapped again";
    }
    Pedal pedal;
    pedal.whileItStarts = [&] {
        pedal.Release(1900);
        pedal.Press(2500);
    };
    pedal.Press(1000);
    EXPECT_TRUE(pedal.IsRunning()) << "pressed again";
    pedal.Release(4000);
    EXPECT_FALSE(pedal.IsRunning());
}

// Steps a second apart: R and X are two controls for recording, P is one for playing, small letters are their
// releases. A dot makes the next step come at once.
TEST(DeviceCommands, AHoldBelongsToTheControlThatBeganIt) {
    static const std::pair<const char*, const char*> kCases[] = {
        {"RPrp", "rpp-"},  {"PRpr", "prr-"},  {"RXxr", "rrr-"},  {"RXrx", "rr--"},
        {"R.rXx", "rrr-"}, {"R.rPp", "rrp-"}, {"RP.pr", "rppp"}, {"R.rp", "rrr"},
    };
    for (const auto& [steps, expected] : kCases) {
        Pedal pedal;
        std::string runs;
        uint32_t nowMs = 0;
        for (const char* step = steps; *step != 0; ++step) {
            nowMs += *step == '.' ? 100 : 1000;
            if (*step == '.') ++step;
            const bool isPlay = (*step | 32) == 'p';
            const auto control = isPlay                ? InputControl::Pedal2
                                 : (*step | 32) == 'x' ? InputControl::RecordButton
                                                       : InputControl::Pedal1;
            if (*step < 'a')
                pedal.Press(nowMs, control, isPlay ? CI_PLAY : CI_RECORD);
            else
                pedal.Release(nowMs, kHoldLimitMs, control, isPlay ? CI_PLAY : CI_RECORD);
            runs += pedal.Runs() == CM_RECORD ? 'r' : pedal.Runs() == CM_PLAY ? 'p' : '-';
        }
        EXPECT_EQ(runs, expected) << steps;
    }
}

// A hot key for Record, on a keyboard that repeats a held key.
class RecordKey final : private HotKeyHold::Target {
public:
    explicit RecordKey(uint32_t repeatDelayMs) : m_repeatDelayMs(repeatDelayMs) {}
    void Hold(uint32_t from, uint32_t to) { m_from = from, m_to = to; }
    bool RunsAt(uint32_t moment) {
        for (; m_nowMs < moment; m_nowMs += 10) {
            const uint32_t held = m_nowMs - m_from;
            if (m_nowMs <= m_to && (held == 0 || (held < UINT32_MAX / 2 && held >= m_repeatDelayMs)))
                m_hold.EvHotKey(7);
            if (m_nowMs == m_timerMs) m_hold.EvTimer();
        }
        return m_pedal.IsRunning();
    }

private:
    int32_t CommandOf(int32_t hotKey) override { return hotKey == 7 ? CI_RECORD : CI_NONE; }
    void CommandPress(int32_t) override { m_pedal.Press(m_nowMs); }
    void CommandRelease(int32_t) override { m_pedal.Release(m_nowMs, kHotKeyHoldLimitMs); }
    void SetTimer(uint32_t ms) override { m_timerMs = m_nowMs + ms; }

    uint32_t m_repeatDelayMs, m_from = 0, m_to = 0, m_nowMs = 10, m_timerMs = 0;
    Pedal m_pedal;
    HotKeyHold m_hold{*this};
};

TEST(HotKeys, ATapRunsOnUntilTheNextTapAndAHoldEndsSoonAfterTheKeyIsLetGo) {
    for (const uint32_t repeatDelayMs : {250u, 500u, 1000u}) {
        RecordKey key(repeatDelayMs);
        key.Hold(1000, 1050);
        EXPECT_TRUE(key.RunsAt(1020) && key.RunsAt(5000)) << repeatDelayMs;
        key.Hold(5000, 5050);
        EXPECT_FALSE(key.RunsAt(5620)) << repeatDelayMs;
        key.Hold(9000, 11000);
        EXPECT_TRUE(key.RunsAt(11240)) << repeatDelayMs;
        EXPECT_FALSE(key.RunsAt(11280)) << repeatDelayMs;
        key.Hold(15000, 15050);
        EXPECT_TRUE(key.RunsAt(19000)) << repeatDelayMs << ", tapped after a hold";
    }
}

TEST(CommandState, OffersOnlyWhatTheSituationAllows) {
    using Modal = CommandSituation::Modal;
    const CommandSituation kNone, kOne{.selectedRows = 1}, kTwo{.selectedRows = 2},
        kCompact{.view = ViewMode::Compact, .selectedRows = 1},
        kRecording{.selectedRows = 1, .isRecording = true, .isRunning = true},
        kPlaying{.selectedRows = 1, .hasAudio = true, .isRunning = true},
        kAsked{.selectedRows = 1, .hasAudio = true, .isRunning = true, .modal = Modal::Question},
        kBusy{.selectedRows = 1, .hasAudio = true, .isRunning = true, .modal = Modal::Process};
    const CommandSituation* const situations[] = {&kNone,      &kOne,     &kTwo,   &kCompact,
                                                  &kRecording, &kPlaying, &kAsked, &kBusy};
    // A letter for each situation in which the command can be given, in the order above.
    static const std::pair<int, const char*> kCases[] = {
        {CM_NEWFILE, "noxcrp--"},    {IDC_SEND, "-oxcrp--"},        {CM_RENAMEFILE, "-o--rp--"},
        {CM_DELETEFILE, "-oxcrp--"}, {CM_PRIORITY_LOW, "-oxcrp--"}, {CM_RECORD, "noxcrpa-"},
        {CM_PLAY, "----rpa-"},       {CM_PLAY_FAST, "noxcrpa-"},    {IDC_REWIND, "----rpa-"},
        {IDC_STOP, "----rpab"},      {CM_GOTOEND, "----rpa-"},      {CM_VIEW_COMPACT, "noxcrp--"},
        {IDC_PLAY, "-----pa-"},      {CM_EXIT, "noxcrpab"},         {CM_HELP, "noxcrpa-"},
    };
    for (const auto& [command, given] : kCases) {
        for (size_t i = 0; i < std::size(situations); ++i)
            EXPECT_EQ(IsCommandEnabled(command, *situations[i]), given[i] != '-') << command << " in " << i;
    }
}

TEST(KeyTable, GivesEachPressOnceAndLeavesEditingToTheEditors) {
    using Kind = KeyAction::Kind;
    constexpr int kF5 = 0x74, kF7 = 0x76, kHome = 0x24, kReturn = 0x0D;
    static const std::tuple<const char*, KeyPress, Kind, int> kCases[] = {
        {"Ctrl+S", {.key = 'S', .ctrl = true}, Kind::Command, CM_SENDFILE},
        {"Ctrl+S held", {.key = 'S', .ctrl = true, .repeats = true}, Kind::Swallow, CM_SENDFILE},
        {"S alone", {.key = 'S'}, Kind::PassOn, 0},
        {"Ctrl+Alt+S, a letter of some keyboards", {.key = 'S', .alt = true, .ctrl = true}, Kind::PassOn, 0},
        {"Ctrl+S in a name", {.key = 'S', .ctrl = true, .focus = KeyFocus::NameEditor}, Kind::PassOn, 0},
        {"Shift+F5", {.key = kF5, .shift = true}, Kind::Command, CM_RECORD_END},
        {"F7", {.key = kF7}, Kind::Wind, 0},
        {"F7 held", {.key = kF7, .repeats = true}, Kind::Swallow, 0},
        {"Ctrl+A", {.key = 'A', .ctrl = true, .focus = KeyFocus::List}, Kind::SelectAll, 0},
        {"Ctrl+A in a name", {.key = 'A', .ctrl = true, .focus = KeyFocus::NameEditor}, Kind::PassOn, 0},
        {"Enter on a row", {.key = kReturn, .focus = KeyFocus::List}, Kind::PlayRow, 0},
        {"Enter in the notes", {.key = kReturn, .focus = KeyFocus::Notes}, Kind::PassOn, 0},
        {"Home in the list", {.key = kHome}, Kind::Command, CM_GOTOSTART},
        {"Home in the notes", {.key = kHome, .focus = KeyFocus::Notes}, Kind::PassOn, 0},
        {"Enter on a button", {.key = kReturn, .focus = KeyFocus::Button}, Kind::PressButton, 0},
        {"held", {.key = kReturn, .repeats = true, .focus = KeyFocus::Button}, Kind::Swallow, 0},
        {"F5 in the introduction", {.key = kF5, .focus = KeyFocus::OtherWindow}, Kind::Command, CM_RECORD},
        {"Home there", {.key = kHome, .focus = KeyFocus::OtherWindow}, Kind::PassOn, 0},
    };
    for (const auto& [what, press, kind, command] : kCases) {
        const KeyAction action = ActionOf(press);
        EXPECT_EQ(action.kind, kind) << what;
        EXPECT_EQ(action.command, command) << what;
    }
}

TEST(KeyTable, AMediaKeyWindsUntilItIsPressedAgain) {
    constexpr int kNext = 11, kPrevious = 12, kStop = 13, kPlay = 14, kVolumeUp = 10;
    static const std::tuple<int, bool, bool, int> kCases[] = {
        {kNext, false, false, CM_FASTFORWARD}, {kNext, true, false, CM_FASTFORWARD},
        {kNext, false, true, CM_STOP},         {kPrevious, false, true, CM_REWIND},
        {kPrevious, true, false, CM_STOP},     {kStop, true, false, CM_STOP},
        {kPlay, false, false, CM_PLAY},        {kVolumeUp, false, false, 0},
    };
    for (const auto& [key, windsBack, windsForward, command] : kCases)
        EXPECT_EQ(MediaCommandOf(key, windsBack, windsForward), command) << key;
}
