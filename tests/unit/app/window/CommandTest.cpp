#include <gtest/gtest.h>

#include "app/transport/HoldRule.h"
#include "app/window/CommandState.h"
#include "res/Ids.h"

// Plays a pedal: what a user does with it, at which millisecond, and whether the transport runs afterwards.
class Pedal {
public:
    void Press(uint32_t at) {
        if (m_running) return;  // refused, and no press time is noted
        m_running = true;
        m_rule.Press(at);
    }
    void Release(uint32_t at) {
        if (m_rule.ReleaseStops(at, kHoldLimitMs)) m_running = false;
    }
    bool IsRunning() const { return m_running; }

private:
    HoldRule m_rule;
    bool m_running = false;
};

TEST(HoldRule, ATapRunsOnUntilTheNextTapAndAHoldEndsWithItsRelease) {
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
        {"two quick taps", 1000, 1150, true, 1300, 1400, false},
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

TEST(CommandState, OffersOnlyWhatTheSituationAllows) {
    static const struct {
        int command;
        bool onNone, onOne, onTwo, onRecording, onPlaying;
    } kCases[] = {
        {CM_NEWFILE, true, true, true, true, true},          {IDC_NEW, true, true, true, true, true},
        {CM_SENDFILE, false, true, true, true, true},        {IDC_SEND, false, true, true, true, true},
        {CM_RENAMEFILE, false, true, false, true, true},     {CM_DELETEFILE, false, true, true, true, true},
        {CM_PRIORITY_NORMAL, false, true, true, true, true}, {CM_RECORD, true, true, true, true, true},
        {CM_PLAY, false, false, false, true, true},          {CM_PLAY_FAST, false, false, false, true, true},
        {IDC_REWIND, false, false, false, true, true},       {CM_STOP, false, false, false, true, true},
        {IDC_STOP, false, false, false, true, true},         {CM_GOTOEND, false, true, true, true, true},
        {CM_VIEW_COMPACT, true, true, true, true, true},     {CM_EXIT, true, true, true, true, true},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(IsCommandEnabled(c.command, {}), c.onNone) << c.command;
        EXPECT_EQ(IsCommandEnabled(c.command, {.selectedRows = 1}), c.onOne) << c.command;
        EXPECT_EQ(IsCommandEnabled(c.command, {.selectedRows = 2}), c.onTwo) << c.command;
        EXPECT_EQ(IsCommandEnabled(c.command, {.selectedRows = 1, .isRecording = true}), c.onRecording)
            << c.command;
        EXPECT_EQ(IsCommandEnabled(c.command, {.selectedRows = 1, .hasAudio = true, .isPlaying = true}),
                  c.onPlaying)
            << c.command;
    }
}
