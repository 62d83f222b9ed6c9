#pragma once

#include <cstdint>
#include <vector>

#include "audio/convert/LSincFilter.h"

// The state of a rate converter that changes from frame to frame: the last input frames of each channel, on
// the 16-bit scale and clipped there, and the place in them of the next output frame. The window, the frames
// that the next output frame is made of, starts (taps - 1) / 2 frames before that place.
// Units:  input frames, except in Convert and Missing, which count output frames.
// Thread: one at a time.
class LSincHistory {
public:
    // capacity is the room in frames. An output frame can be made when `ahead` frames are present from its
    // window's start on (at least the filter's taps, at most the capacity). The filter outlives this object.
    LSincHistory(const LSincFilter& filter, uint8_t channels, int32_t capacity, int32_t ahead);

    // Starts anew with that many frames of silence, from the window's start on, and nothing else.
    void Restart(int32_t silentFrames, int32_t phase);
    // Adds as many of the frames as there is room for and returns their number.
    int32_t Append(const int32_t* samples, int32_t frames);
    // Makes the output frames whose input is present, at most `frames`, and returns their number.
    int32_t Convert(int32_t* samples, int32_t frames);

    // Input frames to append before that many output frames (at least 1) can be made.
    int64_t Missing(int32_t frames) const;
    // Frames from the window's start on; negative when that lies in input still to come.
    int32_t Held() const { return m_end - m_start; }
    int32_t Phase() const { return m_phase; }

    // Takes the last `cut` frames back, then moves the window to `held` frames before the end. Where frames
    // that far back are no longer kept, the newest ones take their place.
    void Rewind(int32_t cut, int32_t held, int32_t phase);

private:
    int16_t* Channel(uint8_t channel) {
        return m_frames.data() + static_cast<size_t>(channel) * static_cast<size_t>(m_capacity);
    }
    void MakeRoom();

    const LSincFilter& m_filter;
    uint8_t m_channels;
    int32_t m_capacity;
    int32_t m_ahead;
    int32_t m_start = 0;  // the window's start; may lie beyond m_end
    int32_t m_end = 0;
    int32_t m_phase = 0;
    std::vector<int16_t> m_frames;    // channel by channel
    std::vector<int16_t> m_narrowed;  // interleaved, on the way to the channels
};
