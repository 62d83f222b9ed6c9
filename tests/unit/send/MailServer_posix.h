#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/unit/TestThread.h"

// A mail server on the loopback that says what a test tells it to: first its greeting, then one reply for
// each line that it has read, and after "354" one for the message. Then it only reads. Replies are given by
// their codes ("250", or "250+" for one of several lines) and sent byte by byte. Instead of one it can
// "close", send an "endless" line, or "trickle": a byte every few milliseconds.
class MailServer {
public:
    // isDeaf: after its replies it reads nothing before Received().
    explicit MailServer(std::vector<std::string> replies, bool isDeaf = false)
        : m_replies(std::move(replies)), m_isDeaf(isDeaf) {
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof name;
        const int small = 4096;  // so that a client which is not read from soon has to wait
        EXPECT_EQ(setsockopt(m_listener, SOL_SOCKET, SO_RCVBUF, &small, sizeof small), 0);
        EXPECT_EQ(bind(m_listener, reinterpret_cast<sockaddr*>(&name), size), 0);
        EXPECT_EQ(getsockname(m_listener, reinterpret_cast<sockaddr*>(&name), &size), 0);
        EXPECT_EQ(listen(m_listener, 1), 0);
        port = ntohs(name.sin_port);
        m_thread.emplace([this] { Serve(); });
    }
    // All that it was sent. The client has closed, or never came.
    const std::string& Received() {
        m_readOn.Signal();
        shutdown(m_listener, SHUT_RDWR);
        m_thread.reset();
        return m_received;
    }
    ~MailServer() { Received(), close(m_listener); }

    uint16_t port = 0;
    LSignalObject reached;  // the end of its replies

private:
    void Serve() {
        m_client = accept(m_listener, nullptr, nullptr);
        if (m_client < 0) return;
        const int on = 1;
        setsockopt(m_client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        if (Converse()) {
            reached.Signal();
            if (m_isDeaf) m_readOn.Wait(kWaitForever);
            ReadTo("\x01 never");
        }
        close(m_client);
    }
    bool Converse() {
        std::string_view end;
        for (const std::string& reply : m_replies) {
            if (!ReadTo(end) || reply == "close") return false;
            while (reply == "endless" && Say("250-xxxx")) {
            }
            while (reply == "trickle" && Say("2")) usleep(3000);
            if (reply == "250+") Say("250-one\r\n250-AUTH LOGIN\r\n");
            Say(reply.substr(0, 3) + " text\r\n");
            end = reply == "354" ? "\r\n.\r\n" : "\r\n";
        }
        return true;
    }
    bool Say(std::string_view text) {
        for (const char& c : text)
            if (send(m_client, &c, 1, MSG_NOSIGNAL) != 1) return false;
        return true;
    }
    bool ReadTo(std::string_view end) {
        const size_t from = m_received.size();
        while (m_received.find(end, from) == std::string::npos) {
            char buffer[4096];
            const ssize_t count = recv(m_client, buffer, sizeof buffer, 0);
            if (count <= 0) return false;
            m_received.append(buffer, static_cast<size_t>(count));
        }
        return true;
    }

    std::vector<std::string> m_replies;
    bool m_isDeaf;
    std::string m_received;
    LSignalObject m_readOn;
    int m_client = -1;
    int m_listener = socket(AF_INET, SOCK_STREAM, 0);
    std::optional<TestThread> m_thread;
};
