#include "audio/device/PlayMaterial.h"

#include <algorithm>

#include "audio/convert/LSRCPeakLimit.h"
#include "audio/convert/LSpeedSource.h"
#include "audio/device/LWaveBuffer.h"
#include "audio/stream/LDecibel.h"
#include "audio/stream/LKernels.h"
#include "audio/stream/LSoundTime.h"
#include "base/LArith.h"
#include "base/LTrace.h"

// The chain behind the player: the owner's source, LSpeedSource at any speed but 100 percent, and a limiter
// where the level may exceed 16 bits. Each stage is left out where it would change nothing. A change of speed
// builds the chain anew from a place of the source, which stays the owner's; so positions can always be told
// in source frames.

static constexpr int32_t kSourceSpeed = LSpeedSource::kNormalPercent;
// As measured, enough behind sound servers with buffers of 40 to 300 ms.
static constexpr int32_t kTailMs = 300;
static constexpr int32_t kCueRepeats = 4;
static constexpr int32_t kGraphFullScale = 0x7F801;  // and above: the highest bar, 255

bool PlayMaterial::Open(const LSoundSource& source, int32_t percent) {
    if (source->IsError()) {
        LTrace("LSoundPlayer::Start Source Error");
        return false;
    }
    m_source = source;
    return Wrap(percent);
}

void PlayMaterial::Close() {
    m_top.Reset();
    m_source.Reset();
}

bool PlayMaterial::Wrap(int32_t percent) {
    m_percent = Clamp(percent, LSpeedSource::kSlowestPercent, LSpeedSource::kFastestPercent);
    m_top = LSRCPeakLimit::OpenSource(LSpeedSource::OpenSource(m_source, m_percent), kFullScale16);
    if (!m_top->IsError()) return true;
    LTrace("LSoundPlayer::Start Peak Limit Error");
    return false;
}

bool PlayMaterial::SetSpeed(int32_t percent, int32_t sourceFrame) {
    m_source->Seek(sourceFrame);
    return Wrap(percent);
}

int32_t PlayMaterial::BufferFrames() const {
    return WaveBufferFrames(m_top->GetSampleRate());
}

size_t PlayMaterial::TailBuffers() const {
    const int32_t frames = MsToFrames(kTailMs, m_top->GetSampleRate());
    return static_cast<size_t>(RoundUp(frames, BufferFrames())) / static_cast<size_t>(BufferFrames());
}

void PlayMaterial::Seek(int32_t sourceFrame) {
    m_top->Seek(FromSourceFrame(Clamp(sourceFrame, 0, m_source->GetLength())));
}

int32_t PlayMaterial::ToSourceFrame(int32_t frame) const {
    const int32_t sourceFrame =
        m_percent == kSourceSpeed ? frame : LSpeedSource::ToSourceFrame(frame, m_percent);
    return Clamp(sourceFrame, 0, std::max(m_source->GetLength(), 0));
}

int32_t PlayMaterial::FromSourceFrame(int32_t sourceFrame) const {
    return m_percent == kSourceSpeed ? sourceFrame : LSpeedSource::FromSourceFrame(sourceFrame, m_percent);
}

void PlayMaterial::Read(int32_t frames, PlayBlock& block) {
    ReadSamples(frames, block);
    Convert(frames, block);
}

void PlayMaterial::ReadSamples(int32_t frames, PlayBlock& block) {
    m_samples.resize(static_cast<size_t>(frames) * m_top->GetChannels());
    m_top->Read(m_samples.data(), frames);
    block.endFrame = m_top->GetPosition();
}

void PlayMaterial::Convert(int32_t frames, PlayBlock& block) const {
    const uint8_t channels = m_top->GetChannels();
    const auto used = std::span(m_samples).first(static_cast<size_t>(frames) * channels);
    block.samples.resize(used.size());
    Kernels().toPcm16(used.data(), reinterpret_cast<uint8_t*>(block.samples.data()), used.size());
    block.levels.resize(channels);
    for (uint8_t i = 0; i < channels; ++i) block.levels[i] = ChannelRmsDb(used, channels, i);
}

void PlayMaterial::ReadCue(PlayBlock& block) {
    const int32_t place = m_top->GetPosition();
    const int32_t frames = BufferFrames();
    ReadSamples((frames + kCueRepeats - 1) / kCueRepeats, block);
    const size_t snippet = m_samples.size();
    m_samples.resize(static_cast<size_t>(frames) * m_top->GetChannels());
    for (size_t i = snippet; i < m_samples.size(); ++i) m_samples[i] = m_samples[i - snippet];
    Convert(frames, block);
    block.endFrame = place;
    m_top->Seek(place);
}

// The largest magnitude of that many frames, read in blocks of at most kBlockFrames.
static uint32_t ReadPeak(LSoundSourceBase& source, int64_t frames, std::vector<int32_t>& samples) {
    uint32_t peak = 0;
    while (frames > 0) {
        const int32_t now = static_cast<int32_t>(std::min<int64_t>(frames, kBlockFrames));
        samples.resize(static_cast<size_t>(now) * source.GetChannels());
        source.Read(samples.data(), now);
        peak = std::max(peak, Kernels().peak(samples.data(), samples.size()));
        frames -= now;
    }
    return peak;
}

void PlayMaterial::ReadCueGraph(int32_t spanMs, std::span<uint8_t, kGraphBytes> graph) {
    const int32_t place = m_top->GetPosition();
    const int64_t frames = int64_t{std::max(spanMs, 0)} * m_source->GetSampleRate() / 1000;
    const int64_t piece = frames / static_cast<int64_t>(graph.size()) + 2;
    m_source->Seek(ToSourceFrame(place));
    bool isOver = false;
    for (uint8_t& bar : graph) {
        // Past the end there is only silence, which is not read however long the span.
        isOver = isOver || m_source->GetPosition() >= m_source->GetLength();
        const uint32_t peak = isOver ? 0 : ReadPeak(*m_source, piece, m_samples);
        bar = peak >= kGraphFullScale ? uint8_t{255} : static_cast<uint8_t>(peak >> 11);
    }
    m_top->Seek(place);  // the wrapped source too
}
