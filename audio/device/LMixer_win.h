#pragma once

#include <cstdint>
#include <string>

// The sound card's recording inputs and playback volumes, through the platform's mixer.
// Units:  devices are wave-in or wave-out numbers, not mixer numbers; channels are source lines, counted from
//         0 within the recording or the playback destination. Levels are decibels (MixerVolume in
//         LDecibel.h).
// Errors: the first call that fails ends the operation with a trace; no message is shown. Counts that a
//         driver reports about itself are bounded.
// Thread: any, one at a time.
class LMixer {
public:
    static constexpr int32_t kMaxChannels = 127;
    static constexpr int32_t kRecordMixerChannel = -1;  // the inputs stay as the platform's mixer has them

    // Source lines of a wave-in device's recording destination, at most 127; 0 for a negative device.
    static int32_t GetInputChannelCount(int32_t device);
    // At most 31 characters; empty on failure. Channel -1 is "Windows Record Mixer".
    static std::string GetInputChannelName(int32_t device, int32_t channel);
    // Opens one input, shuts the others where the card can, and sets the recording volume. Channel -1 changes
    // nothing.
    static void SetInputChannel(int32_t device, int32_t channel, int32_t db);

    // Sets the speakers to db and the wave-out line that feeds them to db + lineDb, held within -127 to 127,
    // and takes both out of mute.
    static void SetOutVolume(int32_t device, int32_t db, int32_t lineDb = 0);

    // The lines that feed a wave-out device's speakers, as above; there is no channel -1.
    static int32_t GetOutChannelAuxCount(int32_t device);
    static std::string GetOutChannelAuxName(int32_t device, int32_t channel);
    // Switches the line on, takes it out of mute and sets its volume.
    static void SetOutChannelAuxVolume(int32_t device, int32_t channel, int32_t db);
};
