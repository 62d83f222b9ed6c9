#include "app/transport/DockState.h"

#include <algorithm>
#include <utility>

#include "base/LArith.h"
#include "base/LText.h"

const char* DockStateText(DockState state) {
    switch (state) {
        case DockState::Waits:
            return "Please connect your portable recorder to your computer and press the play button on your "
                   "portable.";
        case DockState::TooQuiet:
            return "The sound is too quiet to start.\nMove Activation to the left.";
        case DockState::Records:
            return "Recording dictation.\nWhen complete please click Done.";
        case DockState::Changed:
            return "Recording dictation.\nYour change counts when you click Restart and play the tape again.";
        case DockState::NoDevice:
            return "Unable to start transfer.\nThis may be because the sound card is being used.";
        case DockState::NoFile:
            return "Unable to start transfer.\nThe dictation's file cannot be written. The disk may be full.";
        case DockState::BadSpeed:
            return "Unable to start transfer.\nPlease enter the speed as a number of percent, such as 200.";
        case DockState::TimeIsUp:
            return "One hour was recorded, which is the most.\nPlease click Done, and open this window again "
                   "for "
                   "the rest.";
        case DockState::HasFailed:
            return "The recording has ended. What was recorded is kept.\nPlease click Done.";
    }
    return "";
}

bool QuietTape::Tick() {
    m_ticks = std::max(m_ticks + (std::exchange(m_isHeard, false) ? 1 : -1), 0);
    return m_ticks >= kTicks;
}

std::string DockLengthText(int32_t playedMs, int32_t percent) {
    const int32_t seconds = Saturate(int64_t{playedMs} * percent / 100000);
    return LFormat("Recorded: %.2d:%.2d", static_cast<int>(seconds / 60), static_cast<int>(seconds % 60));
}
