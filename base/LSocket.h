#pragma once

#include <cstdint>
#include <span>
#include <string>

// A TCP connection (IPv4) whose calls return at once; the three waits take as long as they are told. The
// product's platform gives sockets at run time, so a machine without a network library still starts.
// Units:  addresses in network byte order, waits in milliseconds.
// Errors: told by the results, traced by the caller. Without a Use that is ready every call fails.
// Thread: one at a time; the static functions any.
class LSocket {
public:
    // The use of the platform's sockets (version 1.1), to be held around everything else here; counted.
    class Use {
    public:
        Use();
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        bool IsReady() const { return m_isReady; }

    private:
        bool m_isReady;
    };

    enum class Outcome { Done, Pending, Failed };

    LSocket() = default;
    ~LSocket() { Close(); }
    LSocket(const LSocket&) = delete;
    LSocket& operator=(const LSocket&) = delete;

    // Makes a socket that does not block; an earlier one is closed.
    bool Open();
    void Close();
    bool IsOpen() const { return m_handle != kNone; }

    // Pending: WaitConnected tells the end.
    Outcome Connect(uint32_t address, uint16_t port);
    Outcome WaitConnected(uint32_t ms);
    Outcome WaitToSend(uint32_t ms);
    Outcome WaitToReceive(uint32_t ms);

    // The number of bytes that were taken; 0 when there is no room at the moment, below 0 on failure.
    int32_t Send(std::span<const char> bytes);
    // The number of bytes that can be received; 0 also when the other side has closed, below 0 on failure.
    int32_t ReadyBytes();
    // The number of bytes received; 0 when the other side has closed, below 0 on failure.
    int32_t Receive(std::span<char> buffer);

    // A dotted address ("127.0.0.1"); false when the text is none.
    static bool ParseAddress(const std::string& text, uint32_t& address);
    // Asks the platform for the address of a host, which may take a minute (see LHostLookup).
    static bool Resolve(const std::string& host, uint32_t& address);
    // The name of this machine; empty when it cannot be had.
    static std::string LocalHostName();

private:
    static constexpr intptr_t kNone = -1;
    intptr_t m_handle = kNone;
};
