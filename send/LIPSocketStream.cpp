#include "send/LIPSocketStream.h"

#include <algorithm>
#include <string>

#include "base/LTime.h"
#include "base/LTrace.h"
#include "send/Base64.h"
#include "send/SmtpReply.h"

static constexpr size_t kSendBytes = 1024;     // at most in one call
static constexpr size_t kReceiveBytes = 512;   // of a reply, at most in one call
static constexpr size_t kBase64Bytes = 57;     // in a line of 76 characters
static constexpr int32_t kCommandMs = 20000;   // budget of a reply's piece, and of a line in base64
static constexpr uint32_t kReplySlices = 600;  // a whole reply, which may come byte by byte: two minutes
// Longer than any resolver takes; where the platform asks whether to dial, its user may need some time.
static constexpr int32_t kResolveMs = 120000;

ProcessResult LIPSocketStream::Fail(std::string_view trace) {
    LTrace(trace);
    Close();
    return ProcessResult::Failed;
}

template <class Wait>
ProcessResult LIPSocketStream::WaitFor(int32_t& budgetMs, Wait wait) {
    while (!m_process.CancelRequested()) {
        const LSocket::Outcome outcome = wait(m_pace.sliceMs);
        if (outcome == LSocket::Outcome::Done) return ProcessResult::Done;
        if (outcome == LSocket::Outcome::Failed) return Fail("LIPSocketStream select FAILED");
        budgetMs -= kSliceMs;
        if (budgetMs < 1) return Fail("LIPSocketStream Time-Out");
    }
    return ProcessResult::Stopped;
}

ProcessResult LIPSocketStream::FindHost(std::string_view host, uint32_t& address) {
    const std::string name(host);
    if (LSocket::ParseAddress(name, address)) return ProcessResult::Done;
    const LHostLookup lookup(name, m_pace.resolve);
    int32_t budgetMs = kResolveMs;
    const ProcessResult result = WaitFor(budgetMs, [&lookup](uint32_t ms) {
        return lookup.WaitForEnd(ms) ? LSocket::Outcome::Done : LSocket::Outcome::Pending;
    });
    if (result == ProcessResult::Stopped || lookup.IsFound(address)) return result;
    return Fail("Unable to resolve host name (gethostbyname failed)");
}

ProcessResult LIPSocketStream::ProcessConnect(std::string_view host, int32_t budgetMs, uint16_t port) {
    if (!m_socket.Open()) return Fail("Unable to create socket (socket function failed)");
    uint32_t address = 0;
    const ProcessResult found = FindHost(host, address);
    if (found != ProcessResult::Done) return found;
    const LSocket::Outcome outcome = m_socket.Connect(address, port);
    if (outcome == LSocket::Outcome::Done) return ProcessResult::Done;
    if (outcome == LSocket::Outcome::Failed) return Fail("LIPSocketStream::ProcessConnect connect FAILED");
    return WaitFor(budgetMs, [this](uint32_t ms) { return m_socket.WaitConnected(ms); });
}

ProcessResult LIPSocketStream::ProcessSend(std::string_view bytes, int32_t budgetMs) {
    if (!m_socket.IsOpen()) return ProcessResult::Failed;
    while (!bytes.empty()) {
        const int32_t sent = m_socket.Send(bytes.substr(0, kSendBytes));
        if (sent < 0) return Fail("LIPSocketStream::ProcessSend send FAILED");
        bytes.remove_prefix(static_cast<size_t>(sent));
        if (bytes.empty() || static_cast<size_t>(sent) == kSendBytes) continue;
        const ProcessResult waited =
            WaitFor(budgetMs, [this](uint32_t ms) { return m_socket.WaitToSend(ms); });
        if (waited != ProcessResult::Done) return waited;
    }
    return ProcessResult::Done;
}

ProcessResult LIPSocketStream::ProcessRecvReady(std::span<char> buffer, int32_t budgetMs, size_t& received) {
    received = 0;
    if (!m_socket.IsOpen()) return ProcessResult::Failed;
    const ProcessResult waited =
        WaitFor(budgetMs, [this](uint32_t ms) { return m_socket.WaitToReceive(ms); });
    if (waited != ProcessResult::Done) return waited;
    if (m_socket.ReadyBytes() <= 0) return Fail("LIPSocketStream::ProcessRecvReady connection closed");
    const int32_t count = m_socket.Receive(buffer);
    if (count <= 0) return Fail("LIPSocketStream::ProcessRecvReady recv FAILED");
    received = static_cast<size_t>(count);
    return ProcessResult::Done;
}

ProcessResult LIPSocketStream::ReadReply(int32_t& code) {
    code = 0;
    SmtpReply reply;
    SmtpReply::State state = SmtpReply::State::Incomplete;
    const uint32_t begun = LTickMs();
    while (state == SmtpReply::State::Incomplete) {
        char buffer[kReceiveBytes];
        size_t received = 0;
        const ProcessResult result = ProcessRecvReady(buffer, kCommandMs, received);
        if (result != ProcessResult::Done) return result;
        state = reply.Feed({buffer, received});
        if (state == SmtpReply::State::Incomplete && LTickMs() - begun >= kReplySlices * m_pace.sliceMs)
            state = SmtpReply::State::Failed;
    }
    if (state == SmtpReply::State::Failed) return Fail("LIPSocketStream::ReadReply reply does not end");
    code = reply.Code();
    return ProcessResult::Done;
}

ProcessResult LIPSocketStream::SendBase64(std::span<const uint8_t> bytes) {
    do {
        const auto piece = bytes.first(std::min(bytes.size(), kBase64Bytes));
        bytes = bytes.subspan(piece.size());
        char line[Base64Size(kBase64Bytes) + 2];
        char* end = Base64Encode(piece, line);
        *end++ = '\r';
        *end++ = '\n';
        const ProcessResult sent = ProcessSend({line, static_cast<size_t>(end - line)}, kCommandMs);
        if (sent != ProcessResult::Done) return sent;
    } while (!bytes.empty());
    return ProcessResult::Done;
}
