#include "tests/stubs/StandInCodec.h"

#include <algorithm>

#include "base/LBytes.h"

namespace {

using Fault = StandInCodec::Fault;

class Conversion final : public LAcmConversion {
public:
    Conversion(const LWaveFileFormat& coded, bool encodes)
        : m_channels(coded.Channels()), m_align(coded.BlockAlign()), m_encodes(encodes) {
        const uint32_t frames = FramesOfBlock(coded);
        m_pcmBytes = frames * m_channels * 2;
        m_filledBytes =
            coded.Tag() == StandInCodec::kMsAdpcm ? SamplesPerBlock(coded) * m_channels * 2 : m_pcmBytes;
        m_group = std::max(1u, (frames * m_channels + m_align - 2) / std::max(1u, m_align - 1));
    }

    uint32_t OutputSize(uint32_t inputBytes) override { return Size((inputBytes / In() + 1) * Out()); }
    uint32_t InputSize(uint32_t outputBytes) override {
        const uint32_t fold = StandInCodec::fault == Fault::TakesAllAtOnce ? 8 : 1;
        return Size(outputBytes / Out() * In() * fold);
    }

    bool Prepare(std::span<uint8_t> input, std::span<uint8_t> output) override {
        m_input = input;
        m_output = output;
        return StandInCodec::fault != Fault::NoPrepare;
    }
    bool Convert(uint32_t inputBytes, Flag flag, Used& used) override;
    bool Restart() override {
        ++StandInCodec::restarts;
        m_held.clear();
        return true;
    }
    bool Unprepare() override { return true; }
    bool Close() override { return true; }

private:
    // In 16 bits, as the platform's codec computes it.
    static uint32_t FramesOfBlock(const LWaveFileFormat& coded) {
        if (coded.Tag() == StandInCodec::kMsAdpcm)
            return static_cast<uint16_t>(coded.BlockAlign() * 2 / coded.Channels() - 12);
        return coded.Tag() == StandInCodec::kGsm610 ? 320 : StandInCodec::kBlockFrames;
    }
    static uint32_t SamplesPerBlock(const LWaveFileFormat& coded) {
        return LByteReader(coded.Bytes().subspan(LWaveFileFormat::kFixedSize)).U16();
    }

    uint32_t In() const { return m_encodes ? m_pcmBytes : m_align; }
    uint32_t Out() const { return m_encodes ? m_align : m_pcmBytes; }
    static uint32_t Size(uint32_t bytes) {
        if (StandInCodec::fault == Fault::AbsurdSize) return 0xFFFFFFF0u;
        return StandInCodec::fault == Fault::NoSize ? 0 : bytes;
    }

    void Good(std::span<const uint8_t> input, Flag flag, Used& used);
    void All(std::span<const uint8_t> input, Used& used);
    void Block(std::span<const uint8_t> input, std::vector<uint8_t>& block) const;

    uint32_t m_channels;
    uint32_t m_align;
    bool m_encodes;
    uint32_t m_pcmBytes = 0;     // of a block
    uint32_t m_filledBytes = 0;  // what is written for a block, whatever was made room for
    uint32_t m_group = 0;        // samples that one byte stands for
    std::span<uint8_t> m_input;
    std::span<uint8_t> m_output;
    std::vector<uint8_t> m_held;
};

void Conversion::Block(std::span<const uint8_t> input, std::vector<uint8_t>& block) const {
    const size_t groupBytes = size_t{m_group} * 2;
    if (m_encodes) {
        block.assign(m_align, 0);
        for (size_t at = 0; at < input.size(); at += groupBytes)
            block[1 + block[0]++] = input[std::min(at + 1, input.size() - 1)];
        return;
    }
    for (size_t i = 1; i <= std::min<size_t>(input[0], input.size() - 1); ++i) {
        for (size_t n = 0; n < m_group && block.size() < m_filledBytes; ++n) {
            block.push_back(0);
            block.push_back(input[i]);
        }
    }
}

void Conversion::Good(std::span<const uint8_t> input, Flag flag, Used& used) {
    const bool takesPart =
        m_encodes && flag == Flag::End && StandInCodec::fault != Fault::LeavesPartialBlocks;
    for (;;) {
        const size_t size = std::min<size_t>(input.size() - used.input, In());
        const bool whole = size == In();
        if (!(whole || (takesPart && size > 0)) ||
            used.output + (m_held.empty() ? 1 : 2) * Out() > m_output.size())
            break;
        std::vector<uint8_t> block;
        Block(input.subspan(used.input, size), block);
        if (StandInCodec::fault == Fault::HoldsBackABlock) block.swap(m_held);
        std::ranges::copy(block, m_output.begin() + used.output);
        used.input += static_cast<uint32_t>(size);
        used.output += static_cast<uint32_t>(block.size());
        if (StandInCodec::fault == Fault::OneBlockAtATime) return;
    }
    if (flag != Flag::End) return;
    std::ranges::copy(m_held, m_output.begin() + used.output);
    used.output += static_cast<uint32_t>(m_held.size());
    m_held.clear();
}

void Conversion::All(std::span<const uint8_t> input, Used& used) {
    for (; input.size() - used.input >= In(); used.input += In()) {
        std::vector<uint8_t> block;
        Block(input.subspan(used.input, In()), block);
        m_held.insert(m_held.end(), block.begin(), block.end());
    }
    const auto end = m_held.begin() + static_cast<ptrdiff_t>(std::min(m_held.size(), m_output.size()));
    used.output = static_cast<uint32_t>(end - m_held.begin());
    std::copy(m_held.begin(), end, m_output.begin());
    m_held.erase(m_held.begin(), end);
}

bool Conversion::Convert(uint32_t inputBytes, Flag flag, Used& used) {
    used = {};
    if (StandInCodec::fault == Fault::RefusesNothing && inputBytes == 0) return false;
    if (StandInCodec::fault == Fault::TakesAllAtOnce && !m_encodes)
        All(m_input.first(inputBytes), used);
    else
        Good(m_input.first(inputBytes), flag, used);
    if (StandInCodec::conversions++ < StandInCodec::failAfter) return true;
    const uint32_t room = static_cast<uint32_t>(m_output.size());
    const bool isFirst = StandInCodec::conversions == StandInCodec::failAfter + 1;
    const Fault fault = StandInCodec::fault;
    if (fault == Fault::Fails) return false;
    if (fault == Fault::YieldsNothing) used.output = 0;
    if (fault == Fault::YieldsAndConsumesNothing) used = {};
    if (fault == Fault::ConsumesNothing) used = {0, std::min(room, Out())};
    if (fault == Fault::TakesOddBytes) used = {isFirst ? 1u : 0u, 0};
    if (fault == Fault::ConsumesTooMuch) used.input = inputBytes + 1;
    if (fault == Fault::YieldsTooMuch) used.output = room + 1;
    if (fault == Fault::OddBytes) used.output = std::min(room, used.output + (used.output ? 1 : 0));
    return true;
}

}  // namespace

bool StandInCodec::Open(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmTiming timing,
                        std::unique_ptr<LAcmConversion>& conversion) {
    if (fault == Fault::NoCodec || (fault == Fault::OnlyNonRealTime && timing == LAcmTiming::RealTime))
        return false;
    const bool encodes = from.Tag() == kFormatTagPcm;
    const LWaveFileFormat& coded = encodes ? to : from;
    if (encodes == (to.Tag() == kFormatTagPcm) || coded.BlockAlign() < 2) return false;
    if (fault != Fault::NoHandle) conversion = std::make_unique<Conversion>(coded, encodes);
    return true;
}

LWaveFileFormat StandInCodec::Format(uint16_t channels, uint32_t sampleRate) {
    const uint32_t align = 1 + kBlockFrames * uint32_t{channels};
    LByteWriter record;
    record.U16(kTag);
    record.U16(channels);
    record.U32(sampleRate);
    record.U32(sampleRate * align / kBlockFrames);
    record.U16(static_cast<uint16_t>(align));
    record.U16(0);
    record.U16(3);
    for (uint8_t extra = 1; extra <= 3; ++extra) record.U8(extra);
    return LWaveFileFormat(record.View());
}
