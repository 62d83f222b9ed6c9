#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

// Reads little-endian fields from a block of bytes that it does not own.
// Errors: it fails once and stays failed, so one check at the end suffices: after a failure every read yields
//         0 and Ok() is false. Reading beyond the block is the only failure.
class LByteReader {
public:
    explicit LByteReader(std::span<const uint8_t> bytes) : m_rest(bytes) {}

    uint8_t U8() { return static_cast<uint8_t>(Little(1)); }
    uint16_t U16() { return static_cast<uint16_t>(Little(2)); }
    uint32_t U32() { return Little(4); }

    // Takes the next count bytes; an empty span, and failure, when fewer are left.
    std::span<const uint8_t> Bytes(size_t count) {
        if (count > m_rest.size()) {
            m_ok = false;
            m_rest = {};
        }
        if (!m_ok) return {};
        auto taken = m_rest.first(count);
        m_rest = m_rest.subspan(count);
        return taken;
    }

    // A zero-terminated text in a field of count bytes. The last byte of the field counts as the zero, even
    // when it holds another value.
    std::string_view FixedText(size_t count) {
        auto field = Bytes(count);
        if (field.empty()) return {};
        const char* text = reinterpret_cast<const char*>(field.data());
        const void* end = std::memchr(text, 0, field.size() - 1);
        return {text, end ? static_cast<size_t>(static_cast<const char*>(end) - text) : field.size() - 1};
    }

    bool Ok() const { return m_ok; }
    size_t Remaining() const { return m_rest.size(); }

private:
    uint32_t Little(size_t count) {
        uint32_t value = 0;
        uint32_t shift = 0;
        for (uint8_t byte : Bytes(count)) {
            value |= static_cast<uint32_t>(byte) << shift;
            shift += 8;
        }
        return value;
    }

    std::span<const uint8_t> m_rest;
    bool m_ok = true;
};

// Collects little-endian fields in memory; the block is then written with one file call.
class LByteWriter {
public:
    void U8(uint8_t v) { m_bytes.push_back(v); }
    void U16(uint16_t v) { Little(v, 2); }
    void U32(uint32_t v) { Little(v, 4); }
    void Bytes(std::span<const uint8_t> bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }
    void Text(std::string_view text) { m_bytes.insert(m_bytes.end(), text.begin(), text.end()); }

    // A zero-terminated text in a field of count bytes (at least 1), cut to fit and filled with zeros.
    void FixedText(std::string_view text, size_t count) {
        text = text.substr(0, count - 1);
        Text(text);
        m_bytes.insert(m_bytes.end(), count - text.size(), uint8_t{0});
    }

    std::span<const uint8_t> View() const { return m_bytes; }

private:
    void Little(uint32_t v, size_t count) {
        for (size_t i = 0; i < count; ++i, v >>= 8) m_bytes.push_back(static_cast<uint8_t>(v));
    }

    std::vector<uint8_t> m_bytes;
};
