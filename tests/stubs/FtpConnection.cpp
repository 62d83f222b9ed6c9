#include "send/FtpConnection.h"

namespace {

// This machine has no way to the internet.
class NoConnection final : public FtpConnection {
public:
    bool Connect() override { return false; }
    bool LogOnServer(const std::string&, const std::string&, const std::string&) override { return false; }
    bool SetCurrentDirectory(const std::string&) override { return false; }
    bool PutFile(const LPath&, const std::string&) override { return false; }
    bool GetFile(const std::string&, const LPath&, int64_t) override { return false; }
    bool DeleteFile(const std::string&) override { return false; }
    void Disconnect() override {}
};

}  // namespace

std::unique_ptr<FtpConnection> MakeFtpConnection() {
    return std::make_unique<NoConnection>();
}
