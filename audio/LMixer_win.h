#pragma once

#include <cstdint>
#include <string>

// The sound card's recording inputs, through the platform's mixer.
// Errors: a call that fails ends the operation with a trace; nothing is shown.
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
};
