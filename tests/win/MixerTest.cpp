#include "audio/device/LMixer_win.h"

#include <windows.h>

#include <mmsystem.h>

#include "audio/stream/LDecibel.h"
#include "tests/unit/TestKit.h"

// The mixer of the platform's real default devices. Its source lines have controls that take nothing, so that
// only the destinations are read back; a card with everything is in tests/win/mixer.

// What a control of a destination stands at; -1 when there is none.
static int32_t ControlValue(DWORD deviceKind, DWORD lineType, DWORD controlType) {
    UINT mixer = 0;
    DWORD value = 0;
    if (mixerGetID(nullptr, &mixer, deviceKind) != MMSYSERR_NOERROR) return -1;
    const auto object = reinterpret_cast<HMIXEROBJ>(static_cast<UINT_PTR>(mixer));
    MIXERLINEA line = {};
    line.cbStruct = sizeof line;
    line.dwComponentType = lineType;
    mixerGetLineInfoA(object, &line, MIXER_GETLINEINFOF_COMPONENTTYPE);
    MIXERCONTROLA control = {};
    MIXERLINECONTROLSA query = {sizeof query, line.dwLineID, {controlType}, 1, sizeof control, &control};
    if (mixerGetLineControlsA(object, &query, MIXER_GETLINECONTROLSF_ONEBYTYPE) != MMSYSERR_NOERROR)
        return -1;
    MIXERCONTROLDETAILS details = {sizeof details, control.dwControlID, 1, {nullptr}, sizeof value, &value};
    mixerGetControlDetailsA(object, &details, MIXER_GETCONTROLDETAILSF_VALUE);
    return static_cast<int32_t>(value);
}

TEST(Mixer, SetsTheVolumesOfTheRealCardAndNamesItsLines) {
    static const struct {
        DWORD deviceKind, lineType;
        void (*set)(int32_t db);
    } kCases[] = {{MIXER_OBJECTF_WAVEIN, MIXERLINE_COMPONENTTYPE_DST_WAVEIN,
                   [](int32_t db) { LMixer::SetInputChannel(0, 0, db); }},
                  {MIXER_OBJECTF_WAVEOUT, MIXERLINE_COMPONENTTYPE_DST_SPEAKERS,
                   [](int32_t db) { LMixer::SetOutVolume(0, db); }}};
    for (const auto& c : kCases) {
        if (ControlValue(c.deviceKind, c.lineType, MIXERCONTROL_CONTROLTYPE_VOLUME) < 0)
            GTEST_SKIP() << "this machine has no mixer";
        for (const int32_t db : {-36, -20, 0, 11}) {
            c.set(db);
            // The platform keeps the volume as a fraction, and may give back one less.
            EXPECT_NEAR(ControlValue(c.deviceKind, c.lineType, MIXERCONTROL_CONTROLTYPE_VOLUME),
                        MixerVolume(db), 1);
        }
    }
    EXPECT_NE(LMixer::GetInputChannelName(0, 0), "");
    EXPECT_NE(LMixer::GetOutChannelAuxName(0, 0), "");
}
