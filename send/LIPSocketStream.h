#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "base/LHostLookup.h"
#include "base/LProcess.h"
#include "base/LSocket.h"

// A connection to a server that asks its process whether to go on while it waits. Each wait is a row of
// slices of 200 ms; the stop request is tested before each of them, and one in which nothing happened takes
// its 200 ms from the time budget of the operation.
// Errors: Failed (traced) also when the budget is used up; the connection is then closed, so that no late
//         answer is taken for the next one.
// Thread: one at a time. An LSocket::Use is held around it.
class LIPSocketStream {
public:
    static constexpr int32_t kSliceMs = 200;
    // What tests change: how long a slice really takes, and who finds hosts.
    struct Pace {
        uint32_t sliceMs = kSliceMs;
        LHostLookup::Resolve resolve = &LSocket::Resolve;
    };

    explicit LIPSocketStream(ProcessContext& process) : LIPSocketStream(process, Pace()) {}
    LIPSocketStream(ProcessContext& process, const Pace& pace) : m_process(process), m_pace(pace) {}

    // Connects to a host, given as a dotted address or by its name. The budget is that of the connection; the
    // search for the name has one of its own.
    ProcessResult ProcessConnect(std::string_view host, int32_t budgetMs, uint16_t port);
    ProcessResult ProcessSend(std::string_view bytes, int32_t budgetMs);
    // Receives what there is, at least one byte and at most the buffer.
    ProcessResult ProcessRecvReady(std::span<char> buffer, int32_t budgetMs, size_t& received);
    // Reads one reply of a mail server; its code is 0 when none came.
    ProcessResult ReadReply(int32_t& code);
    // Sends bytes in base64, 76 characters to a line; nothing is an empty line.
    ProcessResult SendBase64(std::span<const uint8_t> bytes);
    void Close() { m_socket.Close(); }

private:
    ProcessResult FindHost(std::string_view host, uint32_t& address);
    template <class Wait>
    ProcessResult WaitFor(int32_t& budgetMs, Wait wait);
    ProcessResult Fail(std::string_view trace);

    ProcessContext& m_process;
    Pace m_pace;
    LSocket m_socket;
};
