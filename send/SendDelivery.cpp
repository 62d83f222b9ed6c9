#include "send/SendDelivery.h"

#include "base/LCopyFile.h"
#include "base/LFile.h"
#include "base/LTrace.h"
#include "send/EmailDelivery.h"
#include "send/FtpConnection.h"
#include "send/FtpDelivery.h"
#include "send/SendError.h"
#include "send/SendStage.h"

// A table maps the recipient's method to a function; a new way of delivery is one row and one function.
// Copying into a folder leaves all care to LProcessCopyFile: it writes under a temporary name, reads the file
// back, and never overwrites another file. Keeping the file open while it is renamed was rejected; it cannot
// be renamed then.
// A failed copy counts as sent on purpose: the file is deleted, the record says "Sent", and the error text is
// the user's only notice. The dictation itself stays in the Sent folder.

namespace {

constexpr double kDeliveryStart = 0.5;  // of the queue item; the conversion comes before

ProcessResult CopyToFolder(const SendDelivery& delivery, ProcessContext& context) {
    // Without a folder the target would be a bare file name, in whichever folder is current.
    if (delivery.recipient.folder.empty()) return ProcessResult::Failed;
    SendStage stage(context, kDeliveryStart, 1.0);
    const LPath target = LPath::Join(delivery.recipient.folder, LFileNameOf(delivery.file.View()));
    return LProcessCopyFile(delivery.file, target).Process(stage);
}

// Counts a failed copy as sent (see above). A copy that was stopped did not fail; the next run makes it anew.
ProcessResult DeliverToFolder(const SendDelivery& delivery, ProcessContext& context) {
    const ProcessResult copied = CopyToFolder(delivery, context);
    if (copied == ProcessResult::Failed) {
        LTrace("DeliverToFolder unable to copy", delivery.recipient.folder);
        context.SetError("Unable to copy files over network");
    }
    LFile::Delete(delivery.file);
    return copied == ProcessResult::Stopped ? ProcessResult::Stopped : ProcessResult::Done;
}

// For methods that cannot deliver: reports the reason and deletes the converted file.
ProcessResult Refuse(const SendDelivery& delivery, ProcessContext& context, const char* reason) {
    LTrace("DeliverDictation no way of delivery", reason);
    context.SetError(UnableToSend(reason));
    LFile::Delete(delivery.file);
    return ProcessResult::Failed;
}

ProcessResult DeliverByFtp(const SendDelivery& delivery, ProcessContext& context) {
    return FtpDelivery(delivery, *MakeFtpConnection(), context).Run();
}

struct Route {
    SendToSettings::Method method;
    ProcessResult (*deliver)(const SendDelivery&, ProcessContext&);
};
constexpr Route kRoutes[] = {
    {SendToSettings::Method::Email, &DeliverByEmail},
    {SendToSettings::Method::Folder, &DeliverToFolder},
    {SendToSettings::Method::Ftp, &DeliverByFtp},
};

}  // namespace

ProcessResult DeliverDictation(const SendDelivery& delivery, ProcessContext& context) {
    if (context.CancelRequested()) {
        LFile::Delete(delivery.file);
        return ProcessResult::Stopped;
    }
    for (const Route& route : kRoutes) {
        if (static_cast<uint32_t>(route.method) == delivery.recipient.method)
            return route.deliver(delivery, context);
    }
    return Refuse(delivery, context, "The recipient has no valid way of delivery.");
}
