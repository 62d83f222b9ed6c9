#pragma once

#include <memory>

#include "base/LMemoryFile.h"

// A stream on a memory file that outlives it, so that a test sees what a sink left behind.
class BorrowedStream final : public LStream {
public:
    explicit BorrowedStream(LMemoryFile& file) : m_file(file) {}
    size_t Read(std::span<uint8_t> buffer) override { return m_file.Read(buffer); }
    bool Seek(int64_t position) override { return m_file.Seek(position); }
    int64_t Position() const override { return m_file.Position(); }
    int64_t Size() const override { return m_file.Size(); }
    size_t Write(std::span<const uint8_t> bytes) override { return m_file.Write(bytes); }
    bool SetEnd() override { return m_file.SetEnd(); }
    bool Flush() override { return ++flushes > 0; }
    static inline int flushes = 0;

private:
    LMemoryFile& m_file;
};

inline std::unique_ptr<LStream> Borrow(LMemoryFile& file) {
    return std::make_unique<BorrowedStream>(file);
}
