// The mixer on a card with everything that a mixer may offer. Wave-in device 1 and wave-out device 2 belong
// to its mixer, number 5. As strict as the platform: a call that names a device where a mixer belongs, or
// whose counts and sizes are not the control's, fails.

#include <windows.h>

#include <mmsystem.h>

#include <array>

#include "audio/device/LMixer_win.h"
#include "tests/unit/TestKit.h"

namespace {

// --- The card ------------------------------------------------------------------------------------------

constexpr int32_t kIn = 1;
constexpr int32_t kOut = 2;
constexpr UINT kMixer = 5;
constexpr DWORD kUniform = MIXERCONTROL_CONTROLF_UNIFORM;
constexpr DWORD kMultiple = MIXERCONTROL_CONTROLF_MULTIPLE | kUniform;
constexpr DWORD kDisabled = MIXERCONTROL_CONTROLF_DISABLED | kUniform;
constexpr DWORD kDestination = 0xFFFF;
constexpr DWORD kPickLines[] = {0x12, 0x11, 0x10};  // Line In, Microphone, CD: an order of its own
constexpr DWORD kFirstControlId = 700;

struct Control {
    DWORD line;
    const char* name;
    DWORD type;
    DWORD flags;
    DWORD items;
};
constexpr Control kControls[] = {
    {0x01, "volume", MIXERCONTROL_CONTROLTYPE_VOLUME, kUniform, 0},
    {0x01, "fader", MIXERCONTROL_CONTROLTYPE_FADER, 0, 0},
    {0x01, "mute", MIXERCONTROL_CONTROLTYPE_MUTE, kUniform, 0},
    {0x01, "disabled", MIXERCONTROL_CONTROLTYPE_VOLUME, kDisabled, 0},
    {0x01, "switch", MIXERCONTROL_CONTROLTYPE_ONOFF, kUniform, 0},
    {0x01, "pick", MIXERCONTROL_CONTROLTYPE_MUX, kMultiple, 3},
    {0x01, "blend", MIXERCONTROL_CONTROLTYPE_MIXER, kMultiple, 4},
    {0x01, "treble", MIXERCONTROL_CONTROLTYPE_TREBLE, kUniform, 0},
    {0x02, "volume", MIXERCONTROL_CONTROLTYPE_VOLUME, 0, 0},
    {0x02, "mute", MIXERCONTROL_CONTROLTYPE_MUTE, kUniform, 0},
    {0x02, "switch", MIXERCONTROL_CONTROLTYPE_ONOFF, kUniform, 0},
    {0x02, "blend", MIXERCONTROL_CONTROLTYPE_MIXER, kMultiple, 2},
    {0x20, "fader", MIXERCONTROL_CONTROLTYPE_FADER, 0, 0},
    {0x20, "switch", MIXERCONTROL_CONTROLTYPE_ONOFF, kUniform, 0},
    {0x21, "volume", MIXERCONTROL_CONTROLTYPE_VOLUME, 0, 0},
    {0x21, "switch", MIXERCONTROL_CONTROLTYPE_ONOFF, kUniform, 0},
};

struct Line {
    DWORD destination;
    DWORD source;
    DWORD id;
    DWORD type;
    const char* name;
    DWORD connections;
};
// The first of the kind "wave out" is a source of Recording.
constexpr Line kLines[] = {
    {0, kDestination, 0x01, MIXERLINE_COMPONENTTYPE_DST_WAVEIN, "Recording", 4},
    {0, 0, 0x10, MIXERLINE_COMPONENTTYPE_SRC_COMPACTDISC, "CD", 0},
    {0, 1, 0x11, MIXERLINE_COMPONENTTYPE_SRC_MICROPHONE, "Microphone", 0},
    {0, 2, 0x12, MIXERLINE_COMPONENTTYPE_SRC_LINE, "Line In", 0},
    {0, 3, 0x13, MIXERLINE_COMPONENTTYPE_SRC_WAVEOUT, "Wave", 0},
    {1, kDestination, 0x02, MIXERLINE_COMPONENTTYPE_DST_SPEAKERS, "Speakers", 2},
    {1, 0, 0x20, MIXERLINE_COMPONENTTYPE_SRC_COMPACTDISC, "CD", 0},
    {1, 1, 0x21, MIXERLINE_COMPONENTTYPE_SRC_WAVEOUT, "Wave", 0},
};

struct Card {
    int32_t failingCall = -1;  // the call of that number fails, counted from 0
    DWORD connections = 0;     // counts that destinations claim, when not 0
    DWORD controls = 0;
    DWORD items = 0;                 // of every control that has items
    bool hasEndlessNames = false;    // names that fill their field and have no end
    bool picksNothingKnown = false;  // the multiplexer's items belong to no line

    int32_t calls = 0;  // so far
    std::string log{};  // what was set, in order: "Recording.pick=0,1,0 "
} g_card;

bool Works(HMIXEROBJ object, DWORD flags) {
    return g_card.calls++ != g_card.failingCall && reinterpret_cast<UINT_PTR>(object) == kMixer &&
           (flags & 0xF0000000) == MIXER_OBJECTF_MIXER;
}

DWORD ControlCount(DWORD line) {
    return static_cast<DWORD>(std::ranges::count(kControls, line, &Control::line));
}

// The control that a request means; null unless the request's sizes are the control's.
const Control* ControlOf(const MIXERCONTROLDETAILS& details, DWORD itemBytes) {
    const DWORD index = details.dwControlID - kFirstControlId;
    if (details.cbStruct != sizeof details || index >= std::size(kControls) || details.cChannels != 1 ||
        details.cbDetails != itemBytes || details.cMultipleItems != kControls[index].items)
        return nullptr;
    return &kControls[index];
}

}  // namespace

MMRESULT WINAPI mixerGetID(HMIXEROBJ object, UINT* mixer, DWORD kind) {
    const auto device = static_cast<int32_t>(reinterpret_cast<UINT_PTR>(object));
    const bool isOurs = device == (kind == MIXER_OBJECTF_WAVEIN ? kIn : kOut);
    *mixer = kMixer;
    return g_card.calls++ != g_card.failingCall && isOurs ? MMSYSERR_NOERROR : MMSYSERR_BADDEVICEID;
}

MMRESULT WINAPI mixerGetLineInfoA(HMIXEROBJ object, MIXERLINEA* info, DWORD flags) {
    if (!Works(object, flags) || info->cbStruct != sizeof *info) return MMSYSERR_ERROR;
    const auto* line = std::ranges::find_if(kLines, [&](const Line& l) {
        return flags == MIXER_GETLINEINFOF_COMPONENTTYPE
                   ? l.type == info->dwComponentType
                   : l.destination == info->dwDestination && l.source == info->dwSource;
    });
    if (line == std::end(kLines)) return MIXERR_INVALLINE;
    *info = {};
    info->cbStruct = sizeof *info;
    info->dwDestination = line->destination;
    info->dwSource = line->source;
    info->dwLineID = line->id;
    info->dwComponentType = line->type;
    info->cConnections = line->connections;
    info->cControls = ControlCount(line->id);
    if (line->source == kDestination && g_card.connections != 0) info->cConnections = g_card.connections;
    if (line->source == kDestination && g_card.controls != 0) info->cControls = g_card.controls;
    const std::string name = g_card.hasEndlessNames ? std::string(sizeof info->szName, 'x') : line->name;
    std::ranges::copy(name, info->szName);
    return MMSYSERR_NOERROR;
}

MMRESULT WINAPI mixerGetLineControlsA(HMIXEROBJ object, MIXERLINECONTROLSA* query, DWORD flags) {
    if (!Works(object, flags) || flags != MIXER_GETLINECONTROLSF_ALL || query->cbStruct != sizeof *query ||
        query->cbmxctrl != sizeof(MIXERCONTROLA) || query->cControls != ControlCount(query->dwLineID))
        return MMSYSERR_ERROR;
    MIXERCONTROLA* out = query->pamxctrl;
    for (DWORD i = 0; i < std::size(kControls); ++i) {
        const Control& control = kControls[i];
        if (control.line != query->dwLineID) continue;
        *out = {};
        out->cbStruct = sizeof *out;
        out->dwControlID = kFirstControlId + i;
        out->dwControlType = control.type;
        out->fdwControl = control.flags;
        out->cMultipleItems = control.items != 0 && g_card.items != 0 ? g_card.items : control.items;
        ++out;
    }
    return MMSYSERR_NOERROR;
}

MMRESULT WINAPI mixerGetControlDetailsA(HMIXEROBJ object, MIXERCONTROLDETAILS* details, DWORD flags) {
    const Control* control = ControlOf(*details, sizeof(MIXERCONTROLDETAILS_LISTTEXTA));
    if (!Works(object, flags) || flags != MIXER_GETCONTROLDETAILSF_LISTTEXT || control == nullptr ||
        control->type != MIXERCONTROL_CONTROLTYPE_MUX)
        return MMSYSERR_ERROR;
    auto* item = static_cast<MIXERCONTROLDETAILS_LISTTEXTA*>(details->paDetails);
    for (const DWORD line : kPickLines) item++->dwParam1 = g_card.picksNothingKnown ? 0 : line;
    return MMSYSERR_NOERROR;
}

MMRESULT WINAPI mixerSetControlDetails(HMIXEROBJ object, MIXERCONTROLDETAILS* details, DWORD flags) {
    const Control* control = ControlOf(*details, sizeof(DWORD));
    if (!Works(object, flags) || control == nullptr || (control->flags & MIXERCONTROL_CONTROLF_DISABLED) != 0)
        return MMSYSERR_ERROR;
    g_card.log +=
        std::string(std::ranges::find(kLines, control->line, &Line::id)->name) + "." + control->name;
    const auto* values = static_cast<const DWORD*>(details->paDetails);
    for (DWORD i = 0; i < std::max<DWORD>(control->items, 1); ++i)
        g_card.log += (i == 0 ? "=" : ",") + std::to_string(values[i]);
    g_card.log += " ";
    return MMSYSERR_NOERROR;
}

// --- The tests -----------------------------------------------------------------------------------------

namespace {

struct Setting {
    const char* method;
    void (*run)();
    std::string log;
};
const Setting kSettings[] = {
    {"SetInputChannel", [] { LMixer::SetInputChannel(kIn, 1, 0); },
     "Recording.volume=51264 Recording.fader=51264 Recording.mute=0 Recording.switch=1 Recording.pick=0,1,0 "
     "Recording.blend=1,1,1,1 "},
    {"SetOutVolume", [] { LMixer::SetOutVolume(kOut, -20, 5); },
     "Speakers.volume=22784 Speakers.mute=0 Wave.volume=29904 Wave.switch=1 "},
    // Of both levels the sum, as far as there are numbers.
    {"SetOutVolume", [] { LMixer::SetOutVolume(kOut, INT32_MAX, 1); },
     "Speakers.volume=65535 Speakers.mute=0 Wave.volume=65535 Wave.switch=1 "},
    {"SetOutVolume", [] { LMixer::SetOutVolume(kOut, INT32_MIN, -100); },
     "Speakers.volume=0 Speakers.mute=0 Wave.volume=0 Wave.switch=1 "},
    {"SetOutChannelAuxVolume", [] { LMixer::SetOutChannelAuxVolume(kOut, 0, -36); },
     "CD.fader=0 CD.switch=1 "},
};

// What an operation sets on a card.
std::string Set(void (*run)(), const Card& card = {}) {
    g_card = card;
    run();
    return g_card.log;
}

}  // namespace

TEST(MixerCard, IsSetAsEachOperationSaysUntilACallFails) {
    for (const Setting& setting : kSettings) {
        TraceLog traces;
        EXPECT_EQ(Set(setting.run), setting.log) << setting.method;
        EXPECT_EQ(traces.All(), "");
        const int32_t calls = g_card.calls;
        for (int32_t failing = 0; failing < calls; ++failing) {
            TraceLog one;
            EXPECT_TRUE(setting.log.starts_with(Set(setting.run, {.failingCall = failing}))) << g_card.log;
            EXPECT_EQ(g_card.calls, failing + 1) << setting.method;
            EXPECT_TRUE(one.All().starts_with(std::string("LMixer::") + setting.method + " mixer"))
                << one.All();
            EXPECT_EQ(std::ranges::count(one.All(), '\n'), 1) << one.All();
        }
    }
}

TEST(MixerCard, NamesTheLinesOfBothDestinations) {
    TraceLog traces;
    g_card = {};
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, LMixer::kRecordMixerChannel), "Windows Record Mixer");
    LMixer::SetInputChannel(kIn, LMixer::kRecordMixerChannel, 0);
    EXPECT_EQ(g_card.calls, 0) << "the user's own mixer is left alone";
    EXPECT_EQ(LMixer::GetInputChannelCount(kIn), 4);
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 2), "Line In");
    EXPECT_EQ(LMixer::GetOutChannelAuxCount(kOut), 2);
    EXPECT_EQ(LMixer::GetOutChannelAuxName(kOut, 1), "Wave");
    EXPECT_EQ(traces.All(), "");
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 4), "");
    EXPECT_EQ(LMixer::GetOutChannelAuxName(kOut, -1), "");
    EXPECT_EQ(LMixer::GetInputChannelCount(-1), 0);
    EXPECT_EQ(LMixer::GetOutChannelAuxCount(kIn), 0);
    EXPECT_EQ(traces.All(),
              "LMixer::GetInputChannelName channel number ERROR\n"
              "LMixer::GetOutChannelAuxName channel number ERROR\n"
              "LMixer::GetInputChannelCount Invalid Input Device\n"
              "LMixer::GetOutChannelAuxCount mixerGetID error\n");
}

TEST(MixerCard, IsNotBelievedBeyondReason) {
    std::string rest = kSettings[0].log;
    rest.erase(rest.find("Recording.pick"), std::string_view("Recording.pick=0,1,0 ").size());
    EXPECT_EQ(Set(kSettings[0].run, {.picksNothingKnown = true}), rest);
    g_card = {.connections = 0xFFFFFFFF, .hasEndlessNames = true};
    EXPECT_EQ(LMixer::GetInputChannelCount(kIn), 127);
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 0), std::string(31, 'x'));
    EXPECT_EQ(LMixer::GetInputChannelName(kIn, 126), "");
    TraceLog traces;
    EXPECT_EQ(Set(kSettings[0].run, {.controls = 0xFFFFFFFF}), "");
    EXPECT_EQ(Set(kSettings[0].run, {.items = 0xFFFFFFFF}).find("pick"), std::string::npos);
    EXPECT_EQ(traces.All(),
              "LMixer::SetInputChannel too many controls\n"
              "LMixer::SetInputChannel number of items ERROR\n");
}
