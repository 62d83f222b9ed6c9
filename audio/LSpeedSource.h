#pragma once

#include <cstdint>

#include "audio/LFilterSource.h"

// Plays a source slower or faster at the speaker's own pitch, by overlap and add.
// Positions and lengths are frames of what it delivers; ToSourceFrame and FromSourceFrame convert.
class LSpeedSource final : public LFilterSource {
public:
    static constexpr int32_t kSlowPercent = 70;
    static constexpr int32_t kNormalPercent = 100;
    static constexpr int32_t kFastPercent = 150;

    // The source itself at 100 percent or when it has an error, otherwise wrapped at its present position.
    // percent is held between 50 and 200.
    static LSoundSource OpenSource(const LSoundSource& source, int32_t percent);

    // The wrapped source's frame that is heard at a frame of ours, and back. Pure arithmetic: any thread.
    static int32_t ToSourceFrame(int32_t frame, int32_t percent);
    static int32_t FromSourceFrame(int32_t sourceFrame, int32_t percent);
};
