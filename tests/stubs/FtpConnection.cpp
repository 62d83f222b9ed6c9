#include "send/FtpConnection.h"

// No native test delivers by FTP through the queue: FtpDelivery is given its connection.
std::unique_ptr<FtpConnection> MakeFtpConnection() {
    return nullptr;
}
