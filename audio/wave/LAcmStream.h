#pragma once

#include <memory>
#include <span>
#include <vector>

#include "audio/wave/LAcm.h"

// A conversion with its input and its output buffer, for a file that is read or written through a codec. It
// checks every length that the codec reports against these buffers; an impossible one is a failed conversion,
// and so is a codec that yields without end.
// The owner fills FreeInput(), calls Convert() and takes Output(), until nothing is left.
// Units:  bytes.
// Errors: operations return false or Flow::Failed; the owner traces and sets its error bit.
// Thread: one at a time.
class LAcmStream {
public:
    enum class Flow {
        Yielded,   // there is output; the input may have been consumed or not
        Consumed,  // input was taken, nothing came out
        Idle,      // neither
        Failed,
    };

    LAcmStream();
    ~LAcmStream();

    // Opens normally and, where that fails, not in real time. True and nevertheless !HasHandle(): see
    // LAcmOpener. The records are those of LAcmRecord().
    bool Open(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmOpener opener);
    bool HasHandle() const { return m_conversion != nullptr; }
    // Sizes the buffers: one as given, the other as the codec asks. False when the codec asks for nothing or
    // for more than 16 MB.
    bool SizeForInput(uint32_t inputBytes);
    bool SizeForOutput(uint32_t outputBytes, uint32_t leastInputBytes);
    bool Prepare();

    // The free part of the input buffer. The owner writes there and then adds the count with AddInput().
    std::span<uint8_t> FreeInput() { return std::span(m_input).subspan(m_inputUsed); }
    void AddInput(size_t bytes) { m_inputUsed += bytes; }
    size_t InputUsed() const { return m_inputUsed; }

    // Converts the bytes in the input and removes those that the codec consumed. Output of an earlier
    // conversion that was not taken is dropped.
    Flow Convert(LAcmConversion::Flag flag);
    // The converted bytes that were not taken yet.
    std::span<const uint8_t> Output() const {
        return std::span(m_output).subspan(m_outputTaken, m_outputUsed - m_outputTaken);
    }
    void TakeOutput(size_t bytes) { m_outputTaken += bytes; }
    // Whether a conversion failed because the codec produced more than its input can hold.
    bool IsEndless() const { return m_unfedLeft < 0; }

    // Empties both buffers and the codec.
    void Restart();
    // True also when there is nothing to unprepare or close. Otherwise the destructor does it.
    bool Unprepare();
    bool Close();

private:
    Flow Settle(const LAcmConversion::Used& used);

    std::unique_ptr<LAcmConversion> m_conversion;
    std::vector<uint8_t> m_input;
    std::vector<uint8_t> m_output;
    size_t m_inputUsed = 0;
    size_t m_outputUsed = 0;
    size_t m_outputTaken = 0;
    int64_t m_unfedLeft;  // conversions that may still yield output without consuming input
    bool m_isPrepared = false;
    bool m_isFresh = true;  // nothing was converted since the last restart
};
