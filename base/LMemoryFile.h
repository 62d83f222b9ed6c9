#pragma once

#include <vector>

#include "base/LStream.h"

// A stream in memory, for tests and benches. With a capacity set it behaves like a disk that fills up: a
// write beyond it falls short.
// Thread: one at a time.
class LMemoryFile final : public LStream {
public:
    LMemoryFile() = default;
    explicit LMemoryFile(std::span<const uint8_t> bytes) : m_bytes(bytes.begin(), bytes.end()) {}

    void SetCapacity(size_t bytes) { m_capacity = bytes; }
    std::span<const uint8_t> View() const { return m_bytes; }

    size_t Read(std::span<uint8_t> buffer) override;
    bool Seek(int64_t position) override;
    int64_t Position() const override { return m_position; }
    int64_t Size() const override { return static_cast<int64_t>(m_bytes.size()); }
    size_t Write(std::span<const uint8_t> bytes) override;
    bool SetEnd() override;
    bool Flush() override { return true; }

private:
    std::vector<uint8_t> m_bytes;
    int64_t m_position = 0;
    size_t m_capacity = SIZE_MAX;
};
