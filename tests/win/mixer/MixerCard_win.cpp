// winmm.dll for the tests of the mixer: the card of MixerCard_win.h. As strict as the platform: a call that
// names a device where a mixer belongs, or whose counts and sizes are not the control's, fails.

#include "tests/win/mixer/MixerCard_win.h"

#include <windows.h>

#include <mmsystem.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>

namespace {

constexpr UINT kMixer = 5;
constexpr DWORD kUniform = MIXERCONTROL_CONTROLF_UNIFORM;
constexpr DWORD kMultiple = MIXERCONTROL_CONTROLF_MULTIPLE | kUniform;
constexpr DWORD kDisabled = MIXERCONTROL_CONTROLF_DISABLED | kUniform;
constexpr DWORD kDestination = 0xFFFF;
constexpr DWORD kPickLines[] = {0x12, 0x11, 0x10};  // an order of its own
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
    {0x20, "mute", MIXERCONTROL_CONTROLTYPE_MUTE, kUniform, 0},
    {0x20, "switch", MIXERCONTROL_CONTROLTYPE_ONOFF, kUniform, 0},
    {0x20, "treble", MIXERCONTROL_CONTROLTYPE_TREBLE, kUniform, 0},
    {0x21, "volume", MIXERCONTROL_CONTROLTYPE_VOLUME, 0, 0},
    {0x21, "mute", MIXERCONTROL_CONTROLTYPE_MUTE, kUniform, 0},
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

MixerCard g_card;

bool Fails() {
    return g_card.calls++ == g_card.faults.failingCall;
}

bool IsMixer(HMIXEROBJ object, DWORD flags) {
    return reinterpret_cast<UINT_PTR>(object) == kMixer && (flags & 0xF0000000) == MIXER_OBJECTF_MIXER;
}

const Line* FindLine(const MIXERLINEA& wanted, DWORD by) {
    for (const Line& line : kLines) {
        if (by == MIXER_GETLINEINFOF_COMPONENTTYPE && line.type == wanted.dwComponentType) return &line;
        if (by == MIXER_GETLINEINFOF_SOURCE && line.destination == wanted.dwDestination &&
            line.source == wanted.dwSource)
            return &line;
    }
    return nullptr;
}

const Line& LineOf(DWORD id) {
    const Line* line = kLines;
    while (line->id != id) ++line;
    return *line;
}

DWORD ControlCount(DWORD line) {
    DWORD count = 0;
    for (const Control& control : kControls) count += control.line == line;
    return count;
}

// The control that a request means; null unless the request's sizes are the control's.
const Control* ControlOf(const MIXERCONTROLDETAILS& details, DWORD itemBytes) {
    const DWORD index = details.dwControlID - kFirstControlId;
    if (details.cbStruct != sizeof details || index >= std::size(kControls) || details.cChannels != 1 ||
        details.cbDetails != itemBytes || details.cMultipleItems != kControls[index].items)
        return nullptr;
    return &kControls[index];
}

template <size_t N>
void CopyName(char (&target)[N], const char* name) {
    std::memset(target, g_card.faults.hasEndlessNames ? 'x' : 0, N);
    if (!g_card.faults.hasEndlessNames) std::memcpy(target, name, std::strlen(name));
}

}  // namespace

#define CARD_CALL extern "C" __declspec(dllexport) MMRESULT WINAPI

extern "C" __declspec(dllexport) MixerCard* ResetMixerCard(const CardFaults& faults) {
    g_card = {};
    g_card.faults = faults;
    return &g_card;
}

CARD_CALL mixerGetID(HMIXEROBJ object, UINT* mixer, DWORD kind) {
    const UINT_PTR device = reinterpret_cast<UINT_PTR>(object);
    if (Fails()) return MMSYSERR_NODRIVER;
    if ((kind != MIXER_OBJECTF_WAVEIN || device != 1) && (kind != MIXER_OBJECTF_WAVEOUT || device != 2))
        return MMSYSERR_BADDEVICEID;
    *mixer = kMixer;
    return MMSYSERR_NOERROR;
}

CARD_CALL mixerGetLineInfoA(HMIXEROBJ object, MIXERLINEA* info, DWORD flags) {
    if (Fails()) return MMSYSERR_ERROR;
    if (!IsMixer(object, flags)) return MMSYSERR_BADDEVICEID;
    if (info->cbStruct != sizeof *info) return MMSYSERR_INVALPARAM;
    const Line* line = FindLine(*info, flags);
    if (line == nullptr) return MIXERR_INVALLINE;
    *info = {};
    info->cbStruct = sizeof *info;
    info->dwDestination = line->destination;
    info->dwSource = line->source;
    info->dwLineID = line->id;
    info->dwComponentType = line->type;
    info->cChannels = 2;
    info->cConnections = line->connections;
    info->cControls = ControlCount(line->id);
    if (line->source == kDestination && g_card.faults.connections != 0)
        info->cConnections = g_card.faults.connections;
    if (line->source == kDestination && g_card.faults.controls != 0) info->cControls = g_card.faults.controls;
    CopyName(info->szShortName, line->name);
    CopyName(info->szName, line->name);
    return MMSYSERR_NOERROR;
}

CARD_CALL mixerGetLineControlsA(HMIXEROBJ object, MIXERLINECONTROLSA* query, DWORD flags) {
    if (Fails()) return MMSYSERR_ERROR;
    if (!IsMixer(object, flags)) return MMSYSERR_BADDEVICEID;
    if (query->cbStruct != sizeof *query || query->cbmxctrl != sizeof(MIXERCONTROLA) ||
        query->cControls != ControlCount(query->dwLineID) || flags != MIXER_GETLINECONTROLSF_ALL)
        return MMSYSERR_INVALPARAM;
    MIXERCONTROLA* out = query->pamxctrl;
    for (DWORD i = 0; i < std::size(kControls); ++i) {
        const Control& control = kControls[i];
        if (control.line != query->dwLineID) continue;
        *out = {};
        out->cbStruct = sizeof *out;
        out->dwControlID = kFirstControlId + i;
        out->dwControlType = control.type;
        out->fdwControl = control.flags;
        out->cMultipleItems =
            control.items != 0 && g_card.faults.items != 0 ? g_card.faults.items : control.items;
        CopyName(out->szName, control.name);
        ++out;
    }
    return MMSYSERR_NOERROR;
}

CARD_CALL mixerGetControlDetailsA(HMIXEROBJ object, MIXERCONTROLDETAILS* details, DWORD flags) {
    if (Fails()) return MMSYSERR_ERROR;
    if (!IsMixer(object, flags)) return MMSYSERR_BADDEVICEID;
    const Control* control = ControlOf(*details, sizeof(MIXERCONTROLDETAILS_LISTTEXTA));
    if (control == nullptr || control->type != MIXERCONTROL_CONTROLTYPE_MUX ||
        flags != MIXER_GETCONTROLDETAILSF_LISTTEXT)
        return MMSYSERR_INVALPARAM;
    auto* items = static_cast<MIXERCONTROLDETAILS_LISTTEXTA*>(details->paDetails);
    for (size_t i = 0; i < std::size(kPickLines); ++i) {
        items[i] = {};
        items[i].dwParam1 = g_card.faults.picksNothingKnown ? 0 : kPickLines[i];
        CopyName(items[i].szName, LineOf(kPickLines[i]).name);
    }
    return MMSYSERR_NOERROR;
}

CARD_CALL mixerSetControlDetails(HMIXEROBJ object, MIXERCONTROLDETAILS* details, DWORD flags) {
    if (Fails()) return MMSYSERR_ERROR;
    if (!IsMixer(object, flags)) return MMSYSERR_BADDEVICEID;
    const Control* control = ControlOf(*details, sizeof(DWORD));
    if (control == nullptr || (control->flags & MIXERCONTROL_CONTROLF_DISABLED) != 0)
        return MMSYSERR_INVALPARAM;
    std::string text = std::string(LineOf(control->line).name) + "." + control->name;
    const auto* values = static_cast<const DWORD*>(details->paDetails);
    for (DWORD i = 0; i < (control->items == 0 ? 1 : control->items); ++i)
        text += (i == 0 ? "=" : ",") + std::to_string(values[i]);
    const size_t used = std::strlen(g_card.log);
    std::snprintf(g_card.log + used, sizeof g_card.log - used, "%s ", text.c_str());
    return MMSYSERR_NOERROR;
}
