#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/LPath.h"
#include "base/LProcess.h"
#include "store/CurrentUser.h"
#include "store/QueueAnswer.h"
#include "store/SendToSettings.h"

// A converted dictation that is ready to be delivered.
struct SendDelivery {
    LPath file;  // the WAV or DCT file; owned
    const SendToSettings& recipient;
    uint32_t user;           // number of the sending user
    const DataFolder& data;  // holds the settings of the mail server
    const UserDetails& sender;
    const std::string& dictation;  // its name
    // Asked before a typist's report is applied.
    AskQueue isQueued;
    // To be called once the dictation has arrived, where the delivery goes on: what follows may be cut off,
    // and the dictation must not be sent twice for that.
    std::function<void()> arrived;
};

// Delivers a file by the recipient's method and deletes it, but for one that the platform's mail program has
// taken, and for an FTP delivery that was stopped or has failed. A file that stays is of no use to the queue:
// it converts the dictation again when it sends it again.
// Units:  progress is in fractions of the queue item, 0.5 to 1.
// Errors: Failed, with an error text for the user. Stopped when a cancel was requested before the dictation
//         had arrived, or with an error text when something could not be read for a second; the queue then
//         keeps the entry.
// Thread: the send thread.
ProcessResult DeliverDictation(const SendDelivery& delivery, ProcessContext& context);
