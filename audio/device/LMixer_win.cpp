#include "audio/device/LMixer_win.h"

#include <windows.h>

#include <mmsystem.h>

#include <algorithm>
#include <vector>

#include "audio/stream/LDecibel.h"
#include "base/LArith.h"
#include "base/LTrace.h"

// Each public function is one Operation: it finds the mixer of a wave device, the destination line of its
// side (recording or speakers) and that line's sources, and walks all controls of a line with one
// LineSetting. One walk serves both sides, so a volume, mute, switch or multiplexer is handled in one place.
// Selecting an input means setting the destination's multiplexer or mixer control, not the source's own
// volume.
// Drivers are foreign code. Counts are bounded before memory is allocated for them, and a source line is
// looked up among the sources of our destination, since a mixer that is asked by type alone may name the line
// of another.

namespace {

// Bounds on the counts that a driver reports, which decide how much is allocated. Real cards stay far below.
constexpr DWORD kMaxControls = 256;
constexpr DWORD kMaxItems = 256;
constexpr size_t kMaxNameLength = 31;

// The two sides of a card: how a wave device and its destination line are found in the mixer.
struct Side {
    DWORD deviceKind;       // the kind of device that a device number counts
    DWORD destinationType;  // the line that all sources run into
    const char* invalidDevice;
};
constexpr Side kRecording = {MIXER_OBJECTF_WAVEIN, MIXERLINE_COMPONENTTYPE_DST_WAVEIN,
                             "Invalid Input Device"};
constexpr Side kPlayback = {MIXER_OBJECTF_WAVEOUT, MIXERLINE_COMPONENTTYPE_DST_SPEAKERS,
                            "Invalid Output Device"};

// The values for the controls of a line. Volume and fader controls always get the volume, and mute is always
// switched off.
struct LineSetting {
    int32_t db = 0;
    bool isSwitchedOn = false;  // on/off controls too
    const MIXERLINEA* selected =
        nullptr;  // the source that multiplexers and mixers let through; null: leave them
};

HMIXEROBJ AsObject(UINT number) {
    return reinterpret_cast<HMIXEROBJ>(static_cast<UINT_PTR>(number));
}

// One operation on the mixer of one device, named in its traces after the method that it serves.
class Operation {
public:
    Operation(const char* method, const Side& side, int32_t device) : m_method(method) {
        m_isOpen = Open(side, device);
    }

    bool IsOpen() const { return m_isOpen; }
    const MIXERLINEA& Destination() const { return m_destination; }

    // At most LMixer::kMaxChannels; 0 when the mixer could not be opened.
    int32_t ChannelCount() const {
        return static_cast<int32_t>(std::min<DWORD>(m_destination.cConnections, LMixer::kMaxChannels));
    }

    bool GetSource(int32_t channel, MIXERLINEA& source) const {
        if (!m_isOpen) return false;
        if (channel < 0 || channel >= ChannelCount()) return Fail("channel number ERROR");
        source = {};
        source.dwDestination = m_destination.dwDestination;
        source.dwSource = static_cast<DWORD>(channel);
        return GetLineInfo(source, MIXER_GETLINEINFOF_SOURCE);
    }

    // Searches the sources of this destination: by its type alone a mixer may name the line of another one.
    bool FindSource(DWORD componentType, MIXERLINEA& source) const {
        for (int32_t i = 0; i < ChannelCount(); ++i) {
            if (!GetSource(i, source)) return false;
            if (source.dwComponentType == componentType) return true;
        }
        return Fail("no such source line");
    }

    std::string GetSourceName(int32_t channel) const {
        MIXERLINEA source;
        if (!GetSource(channel, source)) return {};
        return {source.szName, strnlen(source.szName, kMaxNameLength)};
    }

    bool Set(const MIXERLINEA& line, const LineSetting& setting) const {
        std::vector<MIXERCONTROLA> controls;
        return GetControls(line, controls) &&
               std::ranges::all_of(
                   controls, [&](const MIXERCONTROLA& control) { return SetControl(control, setting); });
    }

private:
    bool Open(const Side& side, int32_t device) {
        if (device < 0) return Fail(side.invalidDevice);
        if (mixerGetID(AsObject(static_cast<UINT>(device)), &m_mixer, side.deviceKind) != MMSYSERR_NOERROR)
            return Fail("mixerGetID error");
        MIXERLINEA line = {};
        line.dwComponentType = side.destinationType;
        if (!GetLineInfo(line, MIXER_GETLINEINFOF_COMPONENTTYPE)) return false;
        m_destination = line;
        return true;
    }

    bool GetLineInfo(MIXERLINEA& line, DWORD by) const {
        line.cbStruct = sizeof line;
        return mixerGetLineInfoA(AsObject(m_mixer), &line, MIXER_OBJECTF_MIXER | by) == MMSYSERR_NOERROR ||
               Fail("mixerGetLineInfo ERROR");
    }

    bool GetControls(const MIXERLINEA& line, std::vector<MIXERCONTROLA>& controls) const {
        if (line.cControls == 0) return true;
        if (line.cControls > kMaxControls) return Fail("too many controls");
        controls.resize(line.cControls);
        MIXERLINECONTROLSA query = {};
        query.cbStruct = sizeof query;
        query.dwLineID = line.dwLineID;
        query.cControls = line.cControls;
        query.cbmxctrl = sizeof(MIXERCONTROLA);
        query.pamxctrl = controls.data();
        return mixerGetLineControlsA(AsObject(m_mixer), &query,
                                     MIXER_OBJECTF_MIXER | MIXER_GETLINECONTROLSF_ALL) == MMSYSERR_NOERROR ||
               Fail("mixerGetLineControls ERROR");
    }

    bool SetControl(const MIXERCONTROLA& control, const LineSetting& setting) const {
        if (control.fdwControl & MIXERCONTROL_CONTROLF_DISABLED) return true;  // it can only be read
        switch (control.dwControlType) {
            case MIXERCONTROL_CONTROLTYPE_VOLUME:
            case MIXERCONTROL_CONTROLTYPE_FADER:
                return SetItems(control, MixerVolume(setting.db));
            case MIXERCONTROL_CONTROLTYPE_MUTE:
                return SetItems(control, FALSE);
            case MIXERCONTROL_CONTROLTYPE_ONOFF:
                return !setting.isSwitchedOn || SetItems(control, TRUE);
            case MIXERCONTROL_CONTROLTYPE_MIXER:
                return setting.selected == nullptr || SetItems(control, TRUE);
            case MIXERCONTROL_CONTROLTYPE_MUX:
                return setting.selected == nullptr || SelectItem(control, setting.selected->dwLineID);
            default:
                return true;
        }
    }

    bool SetItems(const MIXERCONTROLA& control, DWORD value) const {
        std::vector<DWORD> values;
        return MakeItems(control, values, value) && SetValues(control, values);
    }

    bool SelectItem(const MIXERCONTROLA& control, DWORD lineId) const {
        std::vector<MIXERCONTROLDETAILS_LISTTEXTA> items;
        if (!MakeItems(control, items, {})) return false;
        MIXERCONTROLDETAILS details = DetailsOf(control, items);
        if (mixerGetControlDetailsA(AsObject(m_mixer), &details,
                                    MIXER_OBJECTF_MIXER | MIXER_GETCONTROLDETAILSF_LISTTEXT) !=
            MMSYSERR_NOERROR)
            return Fail("mixerGetControlDetails ERROR");
        std::vector<DWORD> values(items.size());
        std::ranges::transform(items, values.begin(), [&](const MIXERCONTROLDETAILS_LISTTEXTA& item) {
            return item.dwParam1 == lineId ? TRUE : FALSE;
        });
        // A multiplexer without an item for the line is left alone: all items off would record silence. It is
        // no fault of the card, since another control may select the line.
        if (std::ranges::count(values, DWORD{TRUE}) == 0) return true;
        return SetValues(control, values);
    }

    bool SetValues(const MIXERCONTROLA& control, std::vector<DWORD>& values) const {
        MIXERCONTROLDETAILS details = DetailsOf(control, values);
        return mixerSetControlDetails(AsObject(m_mixer), &details,
                                      MIXER_OBJECTF_MIXER | MIXER_SETCONTROLDETAILSF_VALUE) ==
                   MMSYSERR_NOERROR ||
               Fail("mixerSetControlDetails ERROR");
    }

    static bool HasItems(const MIXERCONTROLA& control) {
        return (control.fdwControl & MIXERCONTROL_CONTROLF_MULTIPLE) != 0;
    }

    // One element for each item of the control; one for a control without items.
    template <class T>
    bool MakeItems(const MIXERCONTROLA& control, std::vector<T>& items, const T& value) const {
        const DWORD count = HasItems(control) ? control.cMultipleItems : 1;
        if (count == 0 || count > kMaxItems) return Fail("number of items ERROR");
        items.assign(count, value);
        return true;
    }

    template <class T>
    static MIXERCONTROLDETAILS DetailsOf(const MIXERCONTROLA& control, std::vector<T>& items) {
        MIXERCONTROLDETAILS details = {};
        details.cbStruct = sizeof details;
        details.dwControlID = control.dwControlID;
        details.cChannels = 1;  // one value for all channels of the line
        details.cMultipleItems = HasItems(control) ? static_cast<DWORD>(items.size()) : 0;
        details.cbDetails = sizeof(T);
        details.paDetails = items.data();
        return details;
    }

    bool Fail(const char* reason) const {
        LTrace(std::string("LMixer::") + m_method + " " + reason);
        return false;
    }

    const char* m_method;
    UINT m_mixer = 0;
    MIXERLINEA m_destination = {};
    bool m_isOpen = false;
};

}  // namespace

int32_t LMixer::GetInputChannelCount(int32_t device) {
    return Operation("GetInputChannelCount", kRecording, device).ChannelCount();
}

std::string LMixer::GetInputChannelName(int32_t device, int32_t channel) {
    if (channel == kRecordMixerChannel) return "Windows Record Mixer";
    return Operation("GetInputChannelName", kRecording, device).GetSourceName(channel);
}

void LMixer::SetInputChannel(int32_t device, int32_t channel, int32_t db) {
    if (channel == kRecordMixerChannel) return;
    const Operation card("SetInputChannel", kRecording, device);
    MIXERLINEA source;
    if (card.GetSource(channel, source))
        card.Set(card.Destination(), {.db = db, .isSwitchedOn = true, .selected = &source});
}

void LMixer::SetOutVolume(int32_t device, int32_t db, int32_t lineDb) {
    const Operation card("SetOutVolume", kPlayback, device);
    MIXERLINEA waveOut;
    if (!card.IsOpen() || !card.Set(card.Destination(), {.db = db})) return;
    const int32_t sumDb = Clamp<int32_t>(Saturate(int64_t{db} + lineDb), kSilenceDb, kMaxDb);
    if (card.FindSource(MIXERLINE_COMPONENTTYPE_SRC_WAVEOUT, waveOut))
        card.Set(waveOut, {.db = sumDb, .isSwitchedOn = true});
}

int32_t LMixer::GetOutChannelAuxCount(int32_t device) {
    return Operation("GetOutChannelAuxCount", kPlayback, device).ChannelCount();
}

std::string LMixer::GetOutChannelAuxName(int32_t device, int32_t channel) {
    return Operation("GetOutChannelAuxName", kPlayback, device).GetSourceName(channel);
}

void LMixer::SetOutChannelAuxVolume(int32_t device, int32_t channel, int32_t db) {
    const Operation card("SetOutChannelAuxVolume", kPlayback, device);
    MIXERLINEA source;
    if (card.GetSource(channel, source)) card.Set(source, {.db = db, .isSwitchedOn = true});
}
