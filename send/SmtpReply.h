#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Reads one reply of a mail server out of pieces of any size: lines "250-text" that go on, and a last one
// "250 text". Of each line the first 254 characters count. What follows the last line is dropped.
// Errors: Failed when the reply is longer than kLongest bytes: a server that never ends its line would keep
//         the program for ever.
class SmtpReply {
public:
    enum class State { Incomplete, Complete, Failed };
    static constexpr size_t kLongest = 65536;

    State Feed(std::string_view bytes);
    // The number at the beginning of the last line; 0 unless the reply is complete.
    int32_t Code() const { return m_code; }

private:
    bool EndLine();

    std::string m_line;  // up to its end or 254 characters
    size_t m_bytes = 0;
    State m_state = State::Incomplete;
    int32_t m_code = 0;
};
