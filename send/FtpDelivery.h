#pragma once

#include "base/LProcess.h"
#include "send/FtpConnection.h"
#include "send/SendDelivery.h"

// Uploads a converted dictation under its own name into the recipient's folder on an FTP server, and fetches
// what the typist has left there for the sending user: the status file "s0000007.sta", which is applied to
// his sent dictations and deleted when all of it is stored.
// Units:  progress is in fractions of the queue item, 0.5 to 0.97.
// Errors: Failed, with an error text for the user, or Stopped before the upload: the converted file stays.
//         After the upload everything is Done; what goes wrong with the status file is only traced, and it
//         waits on the server. The connection ends with any result.
// Thread: the send thread. A stop request is noticed between the stages.
class FtpDelivery {
public:
    FtpDelivery(const SendDelivery& delivery, FtpConnection& server, ProcessContext& context)
        : m_delivery(delivery), m_server(server), m_context(context) {}

    ProcessResult Run();

private:
    struct Stage {
        double progress;
        bool (FtpDelivery::*run)();
        const char* error;
    };
    static const Stage kStages[];

    ProcessResult RunStages();
    bool Connect();
    bool LogOn();
    bool ChangeFolder();
    bool Upload();
    void CollectStatus();
    bool ApplyStatus(const LPath& file) const;

    const SendDelivery& m_delivery;
    FtpConnection& m_server;
    ProcessContext& m_context;
};
