#pragma once

#include <cstdint>
#include <span>

// A stream of bytes that can be read at any place. Parsers take one of these, never a path, so that tests
// feed them from memory.
// Units:  bytes; positions and sizes have 64 bits.
// Thread: one at a time.
class LReadStream {
public:
    virtual ~LReadStream() = default;

    // Reads up to the whole buffer and returns the count, which is smaller only at the end or after a
    // failure.
    virtual size_t Read(std::span<uint8_t> buffer) = 0;
    // Moves to a position from the start; a position beyond the end is allowed and reads nothing.
    virtual bool Seek(int64_t position) = 0;
    virtual int64_t Position() const = 0;
    // The present size (a file that is being written grows); below 0 when it is unknown.
    virtual int64_t Size() const = 0;
    // Whether another handle has the stream open for writing, as far as that can be told.
    virtual bool IsBeingWritten() const { return false; }

    // True when the whole buffer was read.
    bool ReadExact(std::span<uint8_t> buffer) { return Read(buffer) == buffer.size(); }
};

// A stream that can be written as well.
class LStream : public LReadStream {
public:
    // Returns the count of bytes written: less than the buffer when the disk is full.
    virtual size_t Write(std::span<const uint8_t> bytes) = 0;
    // Cuts or extends the stream at the current position.
    virtual bool SetEnd() = 0;
    // Hands all written bytes to the disk itself, so that they survive a power failure.
    virtual bool Flush() = 0;

    bool WriteAll(std::span<const uint8_t> bytes) { return Write(bytes) == bytes.size(); }
};
