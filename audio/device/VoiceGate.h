#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "audio/stream/LDecibel.h"
#include "audio/stream/LSoundSink.h"

// What the recorder decides about each block that the microphone delivers: whether it is written, when a
// pause begins and ends, when the recording has lasted long enough, and where it is cut at the end.
//
// Waiting, it writes nothing until a block reaches the start level. A sound in the first half of that block
// began in the block before, so that block's second half is written too: the first word keeps its onset.
// Recording, it writes every block. When no block has reached the stop level for longer than the hang time,
// it cuts the recording back to shortly after the last loud block and waits again.
//
// Units:  milliseconds are recorded material, counted from the start of the sink.
// Thread: one at a time. The recorder's thread has it from Start() to Stop().
class VoiceGate {
public:
    enum class State : uint8_t { Stopped, Waiting, Recording };

    struct Settings {
        int8_t startLevelDb = kSilenceDb;  // the stop level lies 5 dB below
        int32_t hangTimeMs = 0;
        int32_t maxTimeMs = 0;  // 0 or less: none
        bool recordAtOnce = false;
    };

    // The sink is not empty. Its length is where the clock starts.
    void Start(const LSoundSink& sink, const Settings& settings);

    // One block of whole frames, at most kBlockFrames.
    void Take(std::span<const int32_t> block);
    // A block that was still on its way when the recording was ended: written and measured, but no pause
    // begins with it. Without effect while waiting.
    void TakeLate(std::span<const int32_t> block);
    // Cuts off what follows the last loud block, but for a short rest, and lets go of the sink. Returns where
    // the recording ends.
    int32_t Stop();

    State GetState() const { return m_state; }
    // Where the last loud block ends.
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
    // The rest of a block from the given half on.
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
