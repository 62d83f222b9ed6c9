#pragma once

#include "audio/device/LMixer_win.h"
#include "store/SoundInput.h"

// The mixer's input lines by name. Thread: any, one at a time.
class MixerLines final : public InputLines {
public:
    std::vector<std::string> LineNames(int32_t device) override {
        std::vector<std::string> names;
        const int32_t count = LMixer::GetInputChannelCount(device);
        names.reserve(static_cast<size_t>(count));
        for (int32_t i = 0; i < count; ++i) names.push_back(LMixer::GetInputChannelName(device, i));
        return names;
    }
};
