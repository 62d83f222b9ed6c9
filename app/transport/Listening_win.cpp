#include "app/transport/Listening_win.h"

#include "app/transport/MixerLines_win.h"

// A recorder whose voice activation waits for a level that no sound reaches: it measures, and writes nothing.

namespace {

constexpr int32_t kRate = 8000;

class NoSink final : public LSoundSinkBase {
public:
    NoSink() : LSoundSinkBase(kRate, 1) {}
    void Write(const int32_t*, int32_t) override {}
};

}  // namespace

bool Listening::Start(SoundInput input, int8_t volumeDb, std::function<void(int8_t levelDb)> onLevel) {
    Stop();
    m_onLevel = std::move(onLevel);
    MixerLines lines;
    input = ResolveSoundIn(input, lines);
    LMixer::SetInputChannel(input.device, input.line, volumeDb);
    m_recorder.SetDevice(input.device);
    return m_recorder.Start(LSoundSink::Make<NoSink>(), 0, kMaxDb, 0, 0);
}
