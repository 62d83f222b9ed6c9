#pragma once

#include <cstdint>
#include <string>

#include "base/LPath.h"
#include "base/LProcess.h"
#include "store/CurrentUser.h"
#include "store/SendToSettings.h"

// A converted dictation that is ready to be delivered.
struct SendDelivery {
    LPath file;  // the WAV or DCT file; owned, and deleted by the delivery
    const SendToSettings& recipient;
    uint32_t user;           // number of the sending user
    const DataFolder& data;  // holds the settings of the mail server
    const UserDetails& sender;
    const std::string& dictation;  // its name
};

// Delivers a file by the recipient's method and deletes it with any result: the queue converts the dictation
// again when it sends it again. The exception is a file that the platform's mail program has taken.
// Units:  progress is in fractions of the queue item, 0.5 to 1.
// Errors: Failed, with an error text for the user. Stopped when a cancel was requested before the dictation
//         had arrived, or with an error text when something could not be read for a second; the queue then
//         keeps the entry.
// Thread: the send thread.
ProcessResult DeliverDictation(const SendDelivery& delivery, ProcessContext& context);
