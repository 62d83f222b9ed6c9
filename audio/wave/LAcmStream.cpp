#include "audio/wave/LAcmStream.h"

#include <algorithm>

// The one place that stands between a codec and our memory. The manager lets a codec report any consumed and
// produced length. Trusting it would read or copy beyond a buffer, or lose input without notice, so Settle
// compares both lengths with the buffers.
// A decoder may hold material back and yield it later without being fed. A small fixed allowance for that was
// rejected: a common decoder takes all its input at once and gives it out buffer by buffer, and three
// quarters of five minutes were lost. Each piece of input now pays for 64 conversions without input, so that
// no loop around Convert runs for ever.

// The largest buffer a codec may ask for. 8192 frames of 255 channels take 4 MB of PCM.
static constexpr uint32_t kMostBufferBytes = 16u << 20;
// Conversions without input that each piece of input pays for. No codec packs more than about 64 frames of
// speech into a byte, so a buffer of input becomes at most as many buffers of output.
static constexpr int64_t kUnfedConversions = 64;

LAcmStream::LAcmStream() : m_unfedLeft(kUnfedConversions) {}

LAcmStream::~LAcmStream() {
    Close();
}

bool LAcmStream::Open(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmOpener opener) {
    const auto open = [&](LAcmTiming timing) { return opener(from, to, timing, m_conversion); };
    return open(LAcmTiming::RealTime) || open(LAcmTiming::NonRealTime);
}

bool LAcmStream::SizeForInput(uint32_t inputBytes) {
    const uint32_t outputBytes = m_conversion->OutputSize(inputBytes);
    if (outputBytes == 0 || outputBytes > kMostBufferBytes) return false;
    m_input.resize(inputBytes);
    m_output.resize(outputBytes);
    return true;
}

bool LAcmStream::SizeForOutput(uint32_t outputBytes, uint32_t leastInputBytes) {
    const uint32_t inputBytes = m_conversion->InputSize(outputBytes);
    if (inputBytes == 0 || inputBytes > kMostBufferBytes) return false;
    m_input.resize(std::max(inputBytes, leastInputBytes));
    m_output.resize(outputBytes);
    return true;
}

bool LAcmStream::Prepare() {
    m_isPrepared = m_conversion->Prepare(m_input, m_output);
    return m_isPrepared;
}

LAcmStream::Flow LAcmStream::Convert(LAcmConversion::Flag flag) {
    m_outputUsed = m_outputTaken = 0;
    if (!m_isPrepared) return Flow::Failed;
    m_isFresh = false;
    LAcmConversion::Used used;
    // Some codecs refuse to convert empty input at the end: they hold nothing back.
    const bool mayRefuse = m_inputUsed == 0 && flag == LAcmConversion::Flag::End;
    if (!m_conversion->Convert(static_cast<uint32_t>(m_inputUsed), flag, used))
        return mayRefuse ? Flow::Idle : Flow::Failed;
    return Settle(used);
}

// Checks and books the codec's own count of the bytes that a conversion consumed and produced.
LAcmStream::Flow LAcmStream::Settle(const LAcmConversion::Used& used) {
    if (used.input > m_inputUsed || used.output > m_output.size()) return Flow::Failed;
    if (used.input > 0) m_unfedLeft += kUnfedConversions;
    if (used.input == 0 && used.output > 0) --m_unfedLeft;
    if (IsEndless()) return Flow::Failed;
    std::copy(m_input.begin() + static_cast<ptrdiff_t>(used.input),
              m_input.begin() + static_cast<ptrdiff_t>(m_inputUsed), m_input.begin());
    m_inputUsed -= used.input;
    m_outputUsed = used.output;
    if (used.output > 0) return Flow::Yielded;
    return used.input > 0 ? Flow::Consumed : Flow::Idle;
}

void LAcmStream::Restart() {
    m_inputUsed = m_outputUsed = m_outputTaken = 0;
    m_unfedLeft = kUnfedConversions;
    if (m_isFresh || !m_conversion) return;
    m_conversion->Restart();
    m_isFresh = true;
}

bool LAcmStream::Unprepare() {
    const bool wasPrepared = m_isPrepared;
    m_isPrepared = false;
    return !wasPrepared || m_conversion->Unprepare();
}

bool LAcmStream::Close() {
    const bool unprepared = Unprepare();
    const bool closed = !m_conversion || m_conversion->Close();
    m_conversion.reset();
    return unprepared && closed;
}
