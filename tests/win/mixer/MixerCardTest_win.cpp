// The mixer on a card that has everything; this program runs with the winmm.dll of MixerCard_win.cpp beside it.

#include <windows.h>

#include <cstring>

#include "audio/device/LMixer_win.h"
#include "tests/unit/TestKit.h"
#include "tests/win/mixer/MixerCard_win.h"

namespace {

constexpr int32_t kIn = 1;   // the card's wave-in device
constexpr int32_t kOut = 2;  // and its wave-out device

class MixerCardTest : public testing::Test {
protected:
    void SetUp() override {
        m_reset = reinterpret_cast<ResetMixerCardFunction*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("winmm.dll"), kResetMixerCardName)));
        ASSERT_NE(m_reset, nullptr) << "run with WINEDLLOVERRIDES=winmm=n,b";
        Reset({});
    }
    void Reset(const CardFaults& faults) { m_card = m_reset(faults); }

    ResetMixerCardFunction* m_reset = nullptr;
    MixerCard* m_card = nullptr;
    TraceLog m_traces;
};

struct Setting {
    const char* method;
    void (*run)();
    const char* log;
};
// The multiplexer lists Line In, Microphone, CD.
const Setting kSettings[] = {
    {"SetInputChannel", [] { LMixer::SetInputChannel(kIn, 1, 0); },
     "Recording.volume=51264 Recording.fader=51264 Recording.mute=0 Recording.switch=1 Recording.pick=0,1,0 "
     "Recording.blend=1,1,1,1 "},
    {"SetOutVolume", [] { LMixer::SetOutVolume(kOut, -20, 5); },
     "Speakers.volume=22784 Speakers.mute=0 Wave.volume=29904 Wave.mute=0 Wave.switch=1 "},
    {"SetOutChannelAuxVolume", [] { LMixer::SetOutChannelAuxVolume(kOut, 0, -36); },
     "CD.fader=0 CD.mute=0 CD.switch=1 "},
};

}  // namespace

TEST_F(MixerCardTest, SetsWhatEachOperationIsFor) {
    for (const Setting& setting : kSettings) {
        Reset({});
        setting.run();
        EXPECT_STREQ(m_card->log, setting.log) << setting.method;
    }
    EXPECT_EQ(m_traces.All(), "");
}

TEST_F(MixerCardTest, EndsAtTheFirstCallThatFails) {
    for (const Setting& setting : kSettings) {
        Reset({});
        setting.run();
        const int32_t calls = m_card->calls;
        for (int32_t failing = 0; failing < calls; ++failing) {
            TraceLog traces;
            Reset({.failingCall = failing});
            setting.run();
            EXPECT_EQ(m_card->calls, failing + 1) << setting.method;
            EXPECT_TRUE(std::string_view(setting.log).starts_with(m_card->log)) << m_card->log;
            EXPECT_TRUE(traces.All().starts_with(std::string("LMixer::") + setting.method + " mixer"));
            EXPECT_EQ(std::ranges::count(traces.All(), '\n'), 1) << traces.All();
        }
    }
}

TEST_F(MixerCardTest, NamesTheLinesOfBothDestinations) {
    EXPECT_EQ(LMixer::GetInputChannelCount(kIn), 4);
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 2), "Line In");
    EXPECT_EQ(LMixer::GetOutChannelAuxCount(kOut), 2);
    EXPECT_EQ(LMixer::GetOutChannelAuxName(kOut, 1), "Wave");
    EXPECT_EQ(m_traces.All(), "");
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 4), "");
    EXPECT_EQ(LMixer::GetOutChannelAuxName(kOut, -1), "");
    EXPECT_EQ(LMixer::GetInputChannelCount(-1), 0);
    EXPECT_EQ(LMixer::GetOutChannelAuxCount(kIn), 0);
    EXPECT_EQ(m_traces.All(),
              "LMixer::GetInputChannelName channel number ERROR\n"
              "LMixer::GetOutChannelAuxName channel number ERROR\n"
              "LMixer::GetInputChannelCount Invalid Input Device\n"
              "LMixer::GetOutChannelAuxCount mixerGetID error\n");
    Reset({.failingCall = 1});
    EXPECT_EQ(LMixer::GetInputChannelCount(kIn), 0);
    EXPECT_TRUE(m_traces.Has("LMixer::GetInputChannelCount mixerGetLineInfo ERROR"));
}

TEST_F(MixerCardTest, LeavesAMultiplexerAloneThatDoesNotKnowTheLineAndSetsTheRest) {
    Reset({.picksNothingKnown = true});
    kSettings[0].run();
    std::string rest = kSettings[0].log;
    rest.erase(rest.find("Recording.pick"), std::strlen("Recording.pick=0,1,0 "));
    EXPECT_EQ(m_card->log, rest);
}

TEST_F(MixerCardTest, LeavesTheRecordingMixerAloneForChannelMinusOne) {
    LMixer::SetInputChannel(kIn, LMixer::kRecordMixerChannel, 0);
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, LMixer::kRecordMixerChannel), "Windows Record Mixer");
    EXPECT_EQ(m_card->calls, 0);
}

TEST_F(MixerCardTest, HoldsTheSumOfBothPlaybackLevels) {
    static const struct {
        int32_t db, lineDb;
        const char* volume;
    } kCases[] = {{100, 100, "65535"}, {INT32_MIN, -100, "0"}, {INT32_MAX, 1, "65535"}, {10, -1, "64080"}};
    for (const auto& c : kCases) {
        Reset({});
        LMixer::SetOutVolume(kOut, c.db, c.lineDb);
        EXPECT_NE(std::string(m_card->log).find(std::string("Wave.volume=") + c.volume + " "),
                  std::string::npos)
            << m_card->log;
    }
}

TEST_F(MixerCardTest, BelievesNoDriverBeyondReason) {
    Reset({.connections = 0xFFFFFFFF, .hasEndlessNames = true});
    EXPECT_EQ(LMixer::GetInputChannelCount(kIn), 127);
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 0), std::string(31, 'x'));
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 126), "");
    static const struct {
        CardFaults faults;
        const char* trace;
    } kCases[] = {
        {{.controls = 0xFFFFFFFF}, "LMixer::SetInputChannel too many controls"},
        {{.items = 0xFFFFFFFF}, "LMixer::SetInputChannel number of items ERROR"},
    };
    for (const auto& c : kCases) {
        TraceLog traces;
        Reset(c.faults);
        LMixer::SetInputChannel(kIn, 0, 0);
        EXPECT_EQ(traces.All(), std::string(c.trace) + "\n");
        EXPECT_EQ(std::string_view(m_card->log).find("pick"), std::string_view::npos) << m_card->log;
    }
}
