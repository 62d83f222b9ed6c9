#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "audio/stream/LDecibel.h"
#include "audio/stream/LSoundSink.h"

// The recorder's decisions about each block from the microphone: whether it is written, when a pause begins
// and ends, when the maximum time is reached, and where the recording is cut at its end.
//
// Waiting, it writes nothing until a block reaches the start level. A sound in the first half of that block
// began in the block before, so that block's second half is written too: the first word keeps its onset.
// Recording, it writes every block. When no block has reached the stop level for longer than the hang time,
// it cuts the recording back to shortly behind the last loud block and waits again.
//
// Units:  milliseconds are recorded material, counted from the start of the sink; levels are dB (LDecibel.h),
//         of the louder of the first two channels.
// Errors: SinkFailed().
// Thread: one at a time. The recorder's thread has it from Start() to Stop().
class VoiceGate {
public:
    enum class State : uint8_t { Stopped, Waiting, Recording };

    struct Settings {
        int8_t startLevelDb = kSilenceDb;  // the stop level lies 5 dB below
        int32_t hangTimeMs = 0;
        int32_t maxTimeMs = 0;  // 0 or less: no limit
        bool recordAtOnce = false;
    };

    // The sink is a handle on a sink, not an empty one. The clock starts at its length.
    void Start(const LSoundSink& sink, const Settings& settings);

    // Takes one block of whole frames, at most kBlockFrames.
    void Take(std::span<const int32_t> block);
    // Takes a block that was still on its way when the recording ended: it is written and measured, but no
    // pause begins with it. Without effect while waiting.
    void TakeLate(std::span<const int32_t> block);
    // Cuts the recording off shortly behind its last loud block and releases the sink. Returns the
    // recording's end in ms.
    int32_t Stop();

    State GetState() const { return m_state; }
    // The end of the last loud block.
    int32_t LastLoudMs() const { return m_lastLoudMs; }
    int32_t RecordedMs() const;
    // The level of each channel in the block taken last.
    int8_t LevelDb(uint8_t channel) const { return m_levels[channel]; }
    bool MaxTimeReached() const { return m_maxTimeReached; }
    bool SinkFailed() const { return m_sink && m_sink->IsError(); }

private:
    using Block = std::span<const int32_t>;

    void Record(Block block);
    void Await(Block block);
    void Pause(Block block, int32_t framesBefore);
    void CutAfterLastLoud(int32_t restMs);
    void Write(Block block);
    void Measure(Block block);
    int8_t VoiceDb(Block block) const;
    // The second half of a block, in whole frames.
    Block SecondHalf(Block block) const;
    size_t HalfFrames(Block block) const { return block.size() / m_sink->GetChannels() / 2; }

    LSoundSink m_sink;
    Settings m_settings;
    State m_state = State::Stopped;
    int8_t m_stopLevelDb = kSilenceDb;
    bool m_maxTimeReached = false;
    int32_t m_lastLoudMs = 0;
    int8_t m_voiceDb = kSilenceDb;
    std::array<int8_t, 256> m_levels{};
    std::vector<int32_t> m_previous;  // the block before, while waiting; empty when there is none
};
