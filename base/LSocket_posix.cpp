#include "base/LSocket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>

// The implementation for the native tests.

static LSocket::Outcome Poll(intptr_t handle, short events, uint32_t ms) {
    pollfd wait{static_cast<int>(handle), events, 0};
    const int count = poll(&wait, 1, static_cast<int>(ms));
    if (count == 0 || (count < 0 && errno == EINTR)) return LSocket::Outcome::Pending;
    return count < 0 ? LSocket::Outcome::Failed : LSocket::Outcome::Done;
}

LSocket::Use::Use() : m_isReady(true) {}
LSocket::Use::~Use() {
    m_isReady = false;
}

bool LSocket::Open() {
    Close();
    m_handle = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (m_handle != kNone && fcntl(static_cast<int>(m_handle), F_SETFL, O_NONBLOCK) != 0) Close();
    return IsOpen();
}

void LSocket::Close() {
    if (IsOpen()) close(static_cast<int>(m_handle));
    m_handle = kNone;
}

LSocket::Outcome LSocket::Connect(uint32_t address, uint16_t port) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    name.sin_addr.s_addr = address;
    sockaddr plain{};
    static_assert(sizeof plain == sizeof name);
    std::memcpy(&plain, &name, sizeof plain);
    if (connect(static_cast<int>(m_handle), &plain, sizeof plain) == 0) return Outcome::Done;
    return errno == EINPROGRESS ? Outcome::Pending : Outcome::Failed;
}

LSocket::Outcome LSocket::WaitConnected(uint32_t ms) {
    const Outcome outcome = Poll(m_handle, POLLOUT, ms);
    if (outcome != Outcome::Done) return outcome;
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(static_cast<int>(m_handle), SOL_SOCKET, SO_ERROR, &error, &size);
    return error == 0 ? Outcome::Done : Outcome::Failed;
}

LSocket::Outcome LSocket::WaitToSend(uint32_t ms) {
    return Poll(m_handle, POLLOUT, ms);
}

LSocket::Outcome LSocket::WaitToReceive(uint32_t ms) {
    return Poll(m_handle, POLLIN, ms);
}

int32_t LSocket::Send(std::span<const char> bytes) {
    const ssize_t sent = send(static_cast<int>(m_handle), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) return errno == EAGAIN || errno == EWOULDBLOCK ? 0 : -1;
    return static_cast<int32_t>(sent);
}

int32_t LSocket::ReadyBytes() {
    int ready = 0;
    return ioctl(static_cast<int>(m_handle), FIONREAD, &ready) == 0 ? ready : -1;
}

int32_t LSocket::Receive(std::span<char> buffer) {
    return static_cast<int32_t>(recv(static_cast<int>(m_handle), buffer.data(), buffer.size(), 0));
}

bool LSocket::ParseAddress(const std::string& text, uint32_t& address) {
    address = inet_addr(text.c_str());
    return !text.empty() && address != INADDR_NONE;
}

bool LSocket::Resolve(const std::string& host, uint32_t& address) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return false;
    sockaddr_in name{};
    std::memcpy(&name, found->ai_addr, sizeof name);
    address = name.sin_addr.s_addr;
    freeaddrinfo(found);
    return true;
}

std::string LSocket::LocalHostName() {
    char name[256] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}
