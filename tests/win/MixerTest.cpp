#include "audio/device/LMixer_win.h"

#include <windows.h>

#include <mmsystem.h>

#include "audio/stream/LDecibel.h"
#include "tests/unit/TestKit.h"

// These tests set the mixer of the platform's real default devices. Its source lines have controls that take
// nothing, so that only the destinations are read back; a card with everything is in tests/win/mixer.

namespace {

// What the volume and mute controls of a destination stand at; writes them too.
class Destination {
public:
    Destination(DWORD deviceKind, DWORD componentType) {
        m_line.cbStruct = sizeof m_line;
        m_line.dwComponentType = componentType;
        m_isFound = mixerGetID(nullptr, &m_mixer, deviceKind) == MMSYSERR_NOERROR &&
                    mixerGetLineInfoA(Mixer(), &m_line, MIXER_GETLINEINFOF_COMPONENTTYPE) == MMSYSERR_NOERROR;
    }
    bool IsFound() const { return m_isFound; }
    DWORD Get(DWORD controlType) const {
        DWORD value = 0xFFFFFFFF;
        MIXERCONTROLDETAILS details = Details(controlType, value);
        EXPECT_EQ(mixerGetControlDetailsA(Mixer(), &details, MIXER_GETCONTROLDETAILSF_VALUE),
                  MMSYSERR_NOERROR);
        return value;
    }
    void Set(DWORD controlType, DWORD value) const {
        MIXERCONTROLDETAILS details = Details(controlType, value);
        EXPECT_EQ(mixerSetControlDetails(Mixer(), &details, MIXER_SETCONTROLDETAILSF_VALUE),
                  MMSYSERR_NOERROR);
    }

private:
    HMIXEROBJ Mixer() const { return reinterpret_cast<HMIXEROBJ>(static_cast<UINT_PTR>(m_mixer)); }
    MIXERCONTROLDETAILS Details(DWORD controlType, DWORD& value) const {
        MIXERCONTROLA control = {};
        MIXERLINECONTROLSA query = {};
        query.cbStruct = sizeof query;
        query.dwLineID = m_line.dwLineID;
        query.dwControlType = controlType;
        query.cControls = 1;
        query.cbmxctrl = sizeof control;
        query.pamxctrl = &control;
        EXPECT_EQ(mixerGetLineControlsA(Mixer(), &query, MIXER_GETLINECONTROLSF_ONEBYTYPE), MMSYSERR_NOERROR);
        return {sizeof(MIXERCONTROLDETAILS), control.dwControlID, 1, {nullptr}, sizeof value, &value};
    }

    UINT m_mixer = 0;
    MIXERLINEA m_line = {};
    bool m_isFound = false;
};

void ExpectVolumeFollows(const Destination& line, void (*set)(int32_t db)) {
    if (!line.IsFound()) GTEST_SKIP() << "this machine has no mixer for it";
    for (int32_t db : {-36, -20, 0, 11}) {
        line.Set(MIXERCONTROL_CONTROLTYPE_MUTE, TRUE);
        set(db);
        // The platform keeps the volume as a fraction, and may give back one less.
        EXPECT_NEAR(line.Get(MIXERCONTROL_CONTROLTYPE_VOLUME), MixerVolume(db), 1) << db;
        EXPECT_EQ(line.Get(MIXERCONTROL_CONTROLTYPE_MUTE), DWORD{FALSE}) << db;
    }
}

}  // namespace

TEST(Mixer, SetsTheRecordingVolumeOfTheRealCard) {
    ExpectVolumeFollows({MIXER_OBJECTF_WAVEIN, MIXERLINE_COMPONENTTYPE_DST_WAVEIN},
                        [](int32_t db) { LMixer::SetInputChannel(0, 0, db); });
}

TEST(Mixer, SetsThePlaybackVolumeOfTheRealCard) {
    ExpectVolumeFollows({MIXER_OBJECTF_WAVEOUT, MIXERLINE_COMPONENTTYPE_DST_SPEAKERS},
                        [](int32_t db) { LMixer::SetOutVolume(0, db); });
}

TEST(Mixer, NamesItsLinesAndNeverMoreThanItHas) {
    const int32_t inputs = LMixer::GetInputChannelCount(0);
    for (int32_t i = 0; i < inputs; ++i) EXPECT_NE(LMixer::GetInputChannelName(0, i), "");
    EXPECT_EQ(LMixer::GetInputChannelName(0, inputs), "");
    const int32_t outputs = LMixer::GetOutChannelAuxCount(0);
    for (int32_t i = 0; i < outputs; ++i) EXPECT_NE(LMixer::GetOutChannelAuxName(0, i), "");
    EXPECT_EQ(LMixer::GetOutChannelAuxName(0, outputs), "");
}
