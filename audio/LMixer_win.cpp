#include "audio/LMixer_win.h"

#include <windows.h>

#include <mmsystem.h>

#include <algorithm>
#include <vector>

#include "audio/LDecibel.h"
#include "base/LTrace.h"

namespace {

bool Fail(std::string_view trace) {
    LTrace(trace);
    return false;
}

HMIXEROBJ AsObject(UINT mixer) {
    return reinterpret_cast<HMIXEROBJ>(static_cast<UINT_PTR>(mixer));
}

// The mixer of a wave-in device and its recording destination.
struct InputLine {
    UINT mixer = 0;
    MIXERLINEA line = {};
};

bool FindInputLine(int32_t device, InputLine& input) {
    if (device < 0) return Fail("LMixer::GetInputChannelCount Invalid Input Device");
    const HMIXEROBJ waveIn = AsObject(static_cast<UINT>(device));
    if (mixerGetID(waveIn, &input.mixer, MIXER_OBJECTF_WAVEIN) != MMSYSERR_NOERROR)
        return Fail("LMixer::GetInputChannelCount mixerGetID error");
    input.line.cbStruct = sizeof input.line;
    input.line.dwComponentType = MIXERLINE_COMPONENTTYPE_DST_WAVEIN;
    if (mixerGetLineInfoA(AsObject(input.mixer), &input.line, MIXER_GETLINEINFOF_COMPONENTTYPE) !=
        MMSYSERR_NOERROR)
        return Fail("LMixer::GetInputChannelCount mixerGetLineInfo ERROR");
    return true;
}

int32_t ChannelCount(const InputLine& input) {
    return static_cast<int32_t>(std::min<DWORD>(input.line.cConnections, LMixer::kMaxChannels));
}

bool FindSource(const InputLine& input, int32_t channel, MIXERLINEA& source) {
    if (channel < 0 || channel >= ChannelCount(input))
        return Fail("LMixer::GetInputChannelName channel number ERROR");
    source = {};
    source.cbStruct = sizeof source;
    source.dwDestination = input.line.dwDestination;
    source.dwSource = static_cast<DWORD>(channel);
    return mixerGetLineInfoA(AsObject(input.mixer), &source, MIXER_GETLINEINFOF_SOURCE) == MMSYSERR_NOERROR ||
           Fail("LMixer::GetInputChannelName mixerGetLineInfo ERROR");
}

std::vector<MIXERCONTROLA> ControlsOf(const InputLine& input) {
    std::vector<MIXERCONTROLA> controls(input.line.cControls);
    if (controls.empty()) return controls;
    MIXERLINECONTROLSA query = {};
    query.cbStruct = sizeof query;
    query.dwLineID = input.line.dwLineID;
    query.cControls = input.line.cControls;
    query.cbmxctrl = sizeof(MIXERCONTROLA);
    query.pamxctrl = controls.data();
    if (mixerGetLineControlsA(AsObject(input.mixer), &query, MIXER_GETLINECONTROLSF_ALL) !=
        MMSYSERR_NOERROR) {
        LTrace("LMixer::SetInputChannel mixerGetLineControls ERROR");
        controls.clear();
    }
    return controls;
}

MIXERCONTROLDETAILS DetailsOf(const MIXERCONTROLA& control, std::vector<DWORD>& values) {
    MIXERCONTROLDETAILS details = {};
    details.cbStruct = sizeof details;
    details.dwControlID = control.dwControlID;
    details.cChannels = 1;  // one value for all channels of the line
    details.cMultipleItems = control.fdwControl & MIXERCONTROL_CONTROLF_MULTIPLE ? control.cMultipleItems : 0;
    details.cbDetails = sizeof(DWORD);
    details.paDetails = values.data();
    return details;
}

void SetValues(UINT mixer, const MIXERCONTROLA& control, std::vector<DWORD> values) {
    MIXERCONTROLDETAILS details = DetailsOf(control, values);
    if (mixerSetControlDetails(AsObject(mixer), &details, MIXER_SETCONTROLDETAILSF_VALUE) != MMSYSERR_NOERROR)
        LTrace("LMixer::SetInputChannel mixerSetControlDetails ERROR");
}

// One value for each of a multiplexer's items: 1 for the one whose line is the chosen source.
std::vector<DWORD> MuxSelection(UINT mixer, const MIXERCONTROLA& control, DWORD sourceLine) {
    std::vector<MIXERCONTROLDETAILS_LISTTEXTA> items(control.cMultipleItems);
    std::vector<DWORD> values(items.size());
    MIXERCONTROLDETAILS details = DetailsOf(control, values);
    details.cbDetails = sizeof(MIXERCONTROLDETAILS_LISTTEXTA);
    details.paDetails = items.data();
    if (mixerGetControlDetailsA(AsObject(mixer), &details, MIXER_GETCONTROLDETAILSF_LISTTEXT) !=
        MMSYSERR_NOERROR) {
        LTrace("LMixer::SetInputChannel mixerGetControlDetails ERROR");
        return {};
    }
    std::transform(items.begin(), items.end(), values.begin(),
                   [sourceLine](const auto& item) { return item.dwParam1 == sourceLine ? 1u : 0u; });
    return values;
}

void SetControl(UINT mixer, const MIXERCONTROLA& control, DWORD sourceLine, int32_t db) {
    switch (control.dwControlType) {
        case MIXERCONTROL_CONTROLTYPE_VOLUME:
        case MIXERCONTROL_CONTROLTYPE_FADER:
            SetValues(mixer, control, {MixerVolume(db)});
            break;
        case MIXERCONTROL_CONTROLTYPE_MUTE:
            SetValues(mixer, control, {0});
            break;
        case MIXERCONTROL_CONTROLTYPE_ONOFF:
            SetValues(mixer, control, {1});
            break;
        case MIXERCONTROL_CONTROLTYPE_MIXER:
            SetValues(mixer, control, std::vector<DWORD>(std::max<DWORD>(control.cMultipleItems, 1), 1));
            break;
        case MIXERCONTROL_CONTROLTYPE_MUX:
            if (auto values = MuxSelection(mixer, control, sourceLine); !values.empty())
                SetValues(mixer, control, std::move(values));
            break;
        default:
            break;
    }
}

}  // namespace

int32_t LMixer::GetInputChannelCount(int32_t device) {
    InputLine input;
    return FindInputLine(device, input) ? ChannelCount(input) : 0;
}

std::string LMixer::GetInputChannelName(int32_t device, int32_t channel) {
    if (channel == kRecordMixerChannel) return "Windows Record Mixer";
    InputLine input;
    MIXERLINEA source;
    if (!FindInputLine(device, input) || !FindSource(input, channel, source)) return {};
    return std::string(source.szName, strnlen(source.szName, 31));
}

void LMixer::SetInputChannel(int32_t device, int32_t channel, int32_t db) {
    if (channel == kRecordMixerChannel) return;
    InputLine input;
    MIXERLINEA source;
    if (!FindInputLine(device, input) || !FindSource(input, channel, source)) return;
    for (const MIXERCONTROLA& control : ControlsOf(input))
        SetControl(input.mixer, control, source.dwLineID, db);
}
