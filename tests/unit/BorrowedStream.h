#pragma once

#include <algorithm>
#include <memory>

#include "base/LMemoryFile.h"

// A stream on a memory file that outlives it: a test sees what a sink left behind, or reads what is being
// written.
class BorrowedStream final : public LStream {
public:
    explicit BorrowedStream(LMemoryFile& file) : m_file(file) {}
    size_t Read(std::span<uint8_t> buffer) override {
        const int64_t left = std::clamp<int64_t>(readable - m_position, 0, INT32_MAX);
        m_file.Seek(m_position);
        return Moved(m_file.Read(buffer.first(std::min(buffer.size(), static_cast<size_t>(left)))));
    }
    size_t Write(std::span<const uint8_t> bytes) override {
        m_file.Seek(m_position);
        return Moved(m_file.Write(bytes));
    }
    bool Seek(int64_t position) override {
        m_position = position;
        return m_file.Seek(position);
    }
    int64_t Position() const override { return m_position; }
    int64_t Size() const override { return m_file.Size(); }
    bool SetEnd() override { return m_file.Seek(m_position) && m_file.SetEnd(); }
    bool Flush() override { return ++flushes > 0; }
    bool IsBeingWritten() const override { return isBeingWritten; }

    static inline int flushes = 0;
    static inline bool isBeingWritten = false;
    int64_t readable = INT64_MAX;  // bytes; behind them is a bad sector, or the drive is gone

private:
    size_t Moved(size_t count) {
        m_position += static_cast<int64_t>(count);
        return count;
    }

    LMemoryFile& m_file;
    int64_t m_position = 0;
};

inline std::unique_ptr<BorrowedStream> Borrow(LMemoryFile& file) {
    return std::make_unique<BorrowedStream>(file);
}
