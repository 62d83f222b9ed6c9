#pragma once

#include <memory>
#include <string>

#include "base/LPath.h"

// A session with an FTP server, as the delivery uses it: LFileTransferProtocol, or the double of a test.
// Errors: false (traced).
// Thread: one at a time. A call lasts as long as the server and the platform let it, and nothing interrupts
//         it.
class FtpConnection {
public:
    virtual ~FtpConnection() = default;

    // Makes the way to the internet ready. True at once when it is.
    virtual bool Connect() = 0;
    // Connects first if need be, and leaves the server of before. An empty user logs on as a guest.
    virtual bool LogOnServer(const std::string& server, const std::string& user,
                             const std::string& password) = 0;
    // The following are for a server that one has logged on to. Names go into the server's command line as
    // they are: line breaks in them would be commands of their own.
    virtual bool SetCurrentDirectory(const std::string& path) = 0;
    virtual bool PutFile(const LPath& local, const std::string& remote) = 0;
    // Overwrites the local file, and may leave the beginning of one behind when it fails. Fails for a file
    // that the server lists as longer.
    virtual bool GetFile(const std::string& remote, const LPath& local, int64_t mostBytes) = 0;
    virtual bool DeleteFile(const std::string& remote) = 0;
    // Logs off and ends the session, as the destructor does.
    virtual void Disconnect() = 0;
};

// The platform's.
std::unique_ptr<FtpConnection> MakeFtpConnection();
