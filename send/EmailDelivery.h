#pragma once

#include "base/LProcess.h"
#include "send/SendDelivery.h"

// Delivers a file by e-mail: through the platform's mail program, or through a mail server where the settings
// say so. The file is deleted, but where the mail program has taken it: it may read the file later
// (RemoveMailedFiles).
// Units:  progress is in fractions of the queue item, 0.5 to 1.
// Errors: those of DeliverDictation.
// Thread: the send thread.
ProcessResult DeliverByEmail(const SendDelivery& delivery, ProcessContext& context);
