#pragma once

#include <cstdint>
#include <cstring>

// Reads bits, the highest of each byte first, through a cache as wide as a register. It does not know where
// the bytes end: a reader that may run over has bytes behind them (kMP3SpareBytes) and asks Position().
// Units:  bits.
class MP3BitReader {
public:
    explicit MP3BitReader(const uint8_t* bytes, int32_t position = 0)
        : m_begin(bytes), m_next(bytes + position / 8) {
        Refill();
        Skip(static_cast<uint32_t>(position % 8));
    }

    // Afterwards at least 24 bits can be peeked and skipped.
    void Refill() {
        m_cache |= Load() >> m_count;
        m_next += (kBits - 1 - m_count) >> 3;
        m_count |= kBits - 8;
    }
    uint32_t Peek(uint32_t bits) const {
        return static_cast<uint32_t>(m_cache >> (kBits - bits));
    }  // 1 to 24
    void Skip(uint32_t bits) {
        m_cache <<= bits % kBits;
        m_count -= bits;
    }
    // 0 to 24 bits.
    uint32_t Get(uint32_t bits) {
        if (bits == 0) return 0;
        Refill();
        const uint32_t value = Peek(bits);
        Skip(bits);
        return value;
    }
    bool Flag() { return Get(1) != 0; }
    int32_t Position() const {
        return static_cast<int32_t>((m_next - m_begin) * 8) - static_cast<int32_t>(m_count);
    }

private:
    using Word = uintptr_t;
    static constexpr uint32_t kBits = sizeof(Word) * 8;

    Word Load() const {
        Word word;
        std::memcpy(&word, m_next, sizeof word);
        if constexpr (sizeof word == 8)
            return static_cast<Word>(__builtin_bswap64(word));
        else
            return static_cast<Word>(__builtin_bswap32(static_cast<uint32_t>(word)));
    }

    const uint8_t* m_begin;
    const uint8_t* m_next;
    Word m_cache = 0;      // the next bits, from the highest one down
    uint32_t m_count = 0;  // how many of them are counted in
};
