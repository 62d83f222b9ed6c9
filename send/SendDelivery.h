#pragma once

#include <cstdint>

#include "base/LPath.h"
#include "base/LProcess.h"
#include "store/CurrentUser.h"
#include "store/SendToSettings.h"

// A converted dictation, ready to go to its recipient.
struct SendDelivery {
    LPath file;  // the WAV or DCT file; the delivery owns it
    const SendToSettings& recipient;
    uint32_t user;           // number of the sending user
    const DataFolder& data;  // holds the settings of the mail server and of the user
};

// Delivers by the recipient's method. The delivered file is deleted where the method says so; it is of no
// further use to the queue in any case.
// Units:  progress is in fractions of the queue item, 0.5 to 1.
// Errors: Failed, with an error text for the user; Stopped when a cancel was requested before the dictation
//         had arrived, which the queue then sends again.
// Thread: the send thread.
ProcessResult DeliverDictation(const SendDelivery& delivery, ProcessContext& context);
