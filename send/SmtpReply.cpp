#include "send/SmtpReply.h"

#include "base/LText.h"

static constexpr size_t kLongestLine = 254;
static constexpr size_t kGoesOnAt = 3;  // place of the "-" in a line that another one follows

SmtpReply::State SmtpReply::Feed(std::string_view bytes) {
    while (m_state == State::Incomplete && !bytes.empty()) {
        const size_t end = bytes.find('\n');
        const bool ends = end != std::string_view::npos;
        const size_t taken = ends ? end + 1 : bytes.size();
        m_line += bytes.substr(0, end).substr(0, kLongestLine - m_line.size());
        m_bytes += taken;
        bytes.remove_prefix(taken);
        if (m_bytes > kLongest)
            m_state = State::Failed;
        else if (ends && EndLine())
            m_state = State::Complete;
    }
    return m_state;
}

// True when the line that has ended is the last one.
bool SmtpReply::EndLine() {
    const bool goesOn = m_line.size() > kGoesOnAt && m_line[kGoesOnAt] == '-';
    if (!goesOn) m_code = LParseInt(m_line);
    m_line.clear();
    return !goesOn;
}
