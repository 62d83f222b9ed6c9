#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

#include "base/LFile.h"
#include "base/LThread.h"
#include "bench/Ratios.h"
#include "bench/Silent.h"
#include "send/Base64.h"
#include "send/EmailSMTPSendProcess.h"

// A mail with an attachment of 10 MB, over the loopback, against a bare loop that sends as many lines of 78
// bytes, one to a call; and base64 against a loop that looks up each character.

namespace {

constexpr char kMailBench[] = "MailOf10Mb";
constexpr char kLinesBench[] = "LinesOf10Mb";
constexpr char kBase64Bench[] = "Base64";
constexpr char kPlainBase64Bench[] = "Base64Plain";
const BenchRatio kRatios[] = {
    {"mail of 10 MB / bare loop of lines", kMailBench, kLinesBench, 1.0 / 0.9},
    {"base64 / plain loop", kBase64Bench, kPlainBase64Bench, 0.5},
};

constexpr size_t kAttachmentBytes = 10u << 20;
constexpr size_t kLineBytes = 57;

// Takes connections, one after the other, and reads what comes: a mail, answering each command, or lines that
// it answers once, when the other side has sent its last.
class Server final : LThread {
public:
    explicit Server(bool isMail) : m_isMail(isMail) {
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof name;
        bind(m_listener, reinterpret_cast<sockaddr*>(&name), size);
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&name), &size);
        listen(m_listener, 1);
        address = name;
        Start(kThreadNormal);
    }
    ~Server() override {
        shutdown(m_listener, SHUT_RDWR);
        Stop();
        close(m_listener);
    }
    sockaddr_in address{};

private:
    void ThreadFunction() override {
        for (int client = 0; (client = accept(m_listener, nullptr, nullptr)) >= 0; close(client)) {
            if (m_isMail) {
                for (const char* reply : {"220 hi\r\n", "250 a\r\n", "250 b\r\n", "250 c\r\n", "354 d\r\n"}) {
                    Say(client, reply);
                    ReadTo(client, "\n");
                }
                // The line just read was the first of the message.
                ReadTo(client, "\r\n.\r\n");
                Say(client, "250 e\r\n");
            }
            ReadTo(client, m_isMail ? "QUIT\r\n" : "\x01 never");
            Say(client, "221 f\r\n");
        }
    }
    static void Say(int client, std::string_view text) {
        static_cast<void>(send(client, text.data(), text.size(), MSG_NOSIGNAL));
    }
    // Until the bytes that came last are these, or the other side has sent its last.
    void ReadTo(int client, std::string_view end) {
        for (std::string tail; !tail.ends_with(end);) {
            const ssize_t count = recv(client, m_buffer, sizeof m_buffer, 0);
            if (count <= 0) return;
            const std::string_view bytes(m_buffer, static_cast<size_t>(count));
            tail += bytes.substr(bytes.size() - std::min<size_t>(bytes.size(), 8));
            if (tail.size() > 8) tail.erase(0, tail.size() - 8);
        }
    }

    bool m_isMail;
    int m_listener = socket(AF_INET, SOCK_STREAM, 0);
    char m_buffer[65536];
};

void SendMail(benchmark::State& state) {
    Server server(true);
    const LPath file = LFile::MakeTemporary("cvm");
    const std::vector<uint8_t> content(kAttachmentBytes, 'a');
    LFile(file, LFile::Open::CreateNew).WriteAll(content);
    const MailMessage mail = MailMessage::OfDictation("a@x.org", "Letter", "Ann", "b@x.org", file);
    Silent context;
    for (auto _ : state) {
        EmailSMTPSendProcess process(mail, "127.0.0.1", ntohs(server.address.sin_port));
        if (process.Process(context) != ProcessResult::Done) state.SkipWithError("mail failed");
    }
    LFile::Delete(file);
}

void SendLines(benchmark::State& state) {
    Server server(false);
    const std::string line = std::string(76, 'a') + "\r\n";
    for (auto _ : state) {
        const int client = socket(AF_INET, SOCK_STREAM, 0);
        if (connect(client, reinterpret_cast<const sockaddr*>(&server.address), sizeof server.address) != 0)
            state.SkipWithError("no connection");
        for (size_t sent = 0; sent < kAttachmentBytes; sent += kLineBytes)
            static_cast<void>(send(client, line.data(), line.size(), MSG_NOSIGNAL));
        shutdown(client, SHUT_WR);
        char answer[16];
        benchmark::DoNotOptimize(recv(client, answer, sizeof answer, 0));
        close(client);
    }
}

// In lines, as an attachment is sent.
template <class Encode>
void EncodeLines(benchmark::State& state, Encode encode) {
    std::vector<uint8_t> bytes(kLineBytes * 1024);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 167 + i / 256);
    char line[Base64Size(kLineBytes)];
    for (auto _ : state) {
        for (size_t at = 0; at < bytes.size(); at += kLineBytes) {
            encode(std::span<const uint8_t>(bytes).subspan(at, kLineBytes), line);
            benchmark::DoNotOptimize(line);
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}

char* PlainBase64(std::span<const uint8_t> bytes, char* text) {
    static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (size_t i = 0; i + 2 < bytes.size(); i += 3) {
        *text++ = kAlphabet[bytes[i] >> 2];
        *text++ = kAlphabet[(bytes[i] & 3) << 4 | bytes[i + 1] >> 4];
        *text++ = kAlphabet[(bytes[i + 1] & 15) << 2 | bytes[i + 2] >> 6];
        *text++ = kAlphabet[bytes[i + 2] & 63];
    }
    return text;
}

void OurBase64(benchmark::State& state) {
    EncodeLines(state, &Base64Encode);
}
void OtherBase64(benchmark::State& state) {
    EncodeLines(state, &PlainBase64);
}

BENCHMARK(SendMail)->Name(kMailBench)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(SendLines)->Name(kLinesBench)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(OurBase64)->Name(kBase64Bench);
BENCHMARK(OtherBase64)->Name(kPlainBase64Bench);

}  // namespace
