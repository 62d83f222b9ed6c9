#include "base/LMemoryFile.h"

#include <algorithm>

size_t LMemoryFile::Read(std::span<uint8_t> buffer) {
    if (m_position >= Size()) return 0;
    const size_t from = static_cast<size_t>(m_position);
    const size_t count = std::min(buffer.size(), m_bytes.size() - from);
    std::copy_n(m_bytes.begin() + static_cast<ptrdiff_t>(from), count, buffer.begin());
    m_position += static_cast<int64_t>(count);
    return count;
}

bool LMemoryFile::Seek(int64_t position) {
    if (position < 0) return false;
    m_position = position;
    return true;
}

size_t LMemoryFile::Write(std::span<const uint8_t> bytes) {
    if (bytes.empty() || static_cast<uint64_t>(m_position) >= m_capacity) return 0;
    const size_t from = static_cast<size_t>(m_position);
    const size_t count = std::min(bytes.size(), m_capacity - from);
    if (m_bytes.size() < from + count) m_bytes.resize(from + count);
    std::copy_n(bytes.begin(), count, m_bytes.begin() + static_cast<ptrdiff_t>(from));
    m_position += static_cast<int64_t>(count);
    return count;
}

bool LMemoryFile::SetEnd() {
    if (static_cast<uint64_t>(m_position) > m_capacity) return false;
    m_bytes.resize(static_cast<size_t>(m_position));
    return true;
}
