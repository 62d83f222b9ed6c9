#include "base/LSocket.h"

#include <windows.h>
#include <winsock.h>

#include <cstring>

#include "base/LLibrary_win.h"

// The library is loaded with the first use and stays for the rest of the run: a lookup that was left behind
// (LHostLookup) may be inside it. Its functions are looked up by name, as a machine without the network
// components has no such library, and the program must start there.

namespace {

constexpr WORD kVersion = MAKEWORD(1, 1);

struct Functions {
    decltype(&::WSAStartup) startUp;
    decltype(&::WSACleanup) cleanUp;
    decltype(&::WSAGetLastError) lastError;
    decltype(&::socket) socket;
    decltype(&::closesocket) close;
    decltype(&::ioctlsocket) control;
    decltype(&::connect) connect;
    decltype(&::select) select;
    decltype(&::send) send;
    decltype(&::recv) receive;
    decltype(&::inet_addr) address;
    decltype(&::gethostbyname) hostByName;
    decltype(&::gethostname) hostName;
    bool areThere = false;

    Functions() {
        const HMODULE library = LLoadSystemLibrary("wsock32.dll").Release();
        areThere = library != nullptr && Find(library, "WSAStartup", startUp) &&
                   Find(library, "WSACleanup", cleanUp) && Find(library, "WSAGetLastError", lastError) &&
                   Find(library, "socket", socket) && Find(library, "closesocket", close) &&
                   Find(library, "ioctlsocket", control) && Find(library, "connect", connect) &&
                   Find(library, "select", select) && Find(library, "send", send) &&
                   Find(library, "recv", receive) && Find(library, "inet_addr", address) &&
                   Find(library, "gethostbyname", hostByName) && Find(library, "gethostname", hostName);
    }

private:
    template <class Function>
    static bool Find(HMODULE library, const char* name, Function& function) {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
        return function != nullptr;
    }
};

// First called by a Use.
const Functions& Library() {
    static const Functions functions;
    return functions;
}

// Waits for one socket; failed is told by the exception set of a connection that is being made.
LSocket::Outcome Select(SOCKET handle, bool toRead, bool toWrite, bool toFail, uint32_t ms) {
    const auto only = [handle](bool wanted) {
        fd_set set{};
        set.fd_count = wanted ? 1 : 0;
        set.fd_array[0] = handle;
        return set;
    };
    fd_set read = only(toRead);
    fd_set write = only(toWrite);
    fd_set fail = only(toFail);
    timeval time{static_cast<long>(ms / 1000), static_cast<long>(ms % 1000 * 1000)};
    const int count = Library().select(0, toRead ? &read : nullptr, toWrite ? &write : nullptr,
                                       toFail ? &fail : nullptr, &time);
    if (count == 0) return LSocket::Outcome::Pending;
    if (count < 0 || (toFail && fail.fd_count > 0)) return LSocket::Outcome::Failed;
    return LSocket::Outcome::Done;
}

SOCKET Handle(intptr_t handle) {
    return static_cast<SOCKET>(handle);
}

}  // namespace

LSocket::Use::Use() {
    WSADATA data;
    m_isReady = Library().areThere && Library().startUp(kVersion, &data) == 0;
}

LSocket::Use::~Use() {
    if (m_isReady) Library().cleanUp();
}

bool LSocket::Open() {
    Close();
    if (!Library().areThere) return false;
    m_handle = static_cast<intptr_t>(Library().socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    u_long isNonBlocking = 1;
    if (IsOpen() && Library().control(Handle(m_handle), static_cast<long>(FIONBIO), &isNonBlocking) != 0)
        Close();
    return IsOpen();
}

void LSocket::Close() {
    if (IsOpen()) Library().close(Handle(m_handle));
    m_handle = kNone;
}

LSocket::Outcome LSocket::Connect(uint32_t address, uint16_t port) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = static_cast<u_short>(port << 8 | port >> 8);
    name.sin_addr.s_addr = address;
    sockaddr plain{};
    static_assert(sizeof plain == sizeof name);
    std::memcpy(&plain, &name, sizeof plain);
    if (Library().connect(Handle(m_handle), &plain, sizeof plain) == 0) return Outcome::Done;
    return Library().lastError() == WSAEWOULDBLOCK ? Outcome::Pending : Outcome::Failed;
}

LSocket::Outcome LSocket::WaitConnected(uint32_t ms) {
    return Select(Handle(m_handle), false, true, true, ms);
}

LSocket::Outcome LSocket::WaitToSend(uint32_t ms) {
    return Select(Handle(m_handle), false, true, false, ms);
}

LSocket::Outcome LSocket::WaitToReceive(uint32_t ms) {
    return Select(Handle(m_handle), true, false, false, ms);
}

int32_t LSocket::Send(std::span<const char> bytes) {
    const int sent = Library().send(Handle(m_handle), bytes.data(), static_cast<int>(bytes.size()), 0);
    if (sent >= 0) return sent;
    return Library().lastError() == WSAEWOULDBLOCK ? 0 : -1;
}

int32_t LSocket::ReadyBytes() {
    u_long ready = 0;
    if (Library().control(Handle(m_handle), FIONREAD, &ready) != 0) return -1;
    return static_cast<int32_t>(ready > 0x7FFFFFFFu ? 0x7FFFFFFFu : ready);
}

int32_t LSocket::Receive(std::span<char> buffer) {
    return Library().receive(Handle(m_handle), buffer.data(), static_cast<int>(buffer.size()), 0);
}

bool LSocket::ParseAddress(const std::string& text, uint32_t& address) {
    if (!Library().areThere || text.empty()) return false;
    address = Library().address(text.c_str());
    return address != INADDR_NONE;
}

bool LSocket::Resolve(const std::string& host, uint32_t& address) {
    if (!Library().areThere) return false;
    const hostent* const found = Library().hostByName(host.c_str());
    if (found == nullptr || found->h_length != sizeof address || found->h_addr_list[0] == nullptr)
        return false;
    std::memcpy(&address, found->h_addr_list[0], sizeof address);
    return true;
}

std::string LSocket::LocalHostName() {
    char name[256] = {};
    return Library().areThere && Library().hostName(name, sizeof name - 1) == 0 ? name : "";
}
