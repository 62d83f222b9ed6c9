#include "send/SendDelivery.h"

#include "base/LCopyFile.h"
#include "base/LFile.h"
#include "base/LTrace.h"
#include "send/SendError.h"
#include "send/SendStage.h"

namespace {

constexpr double kDeliveryStart = 0.5;  // of the queue item; the conversion comes before

ProcessResult CopyToFolder(const SendDelivery& delivery, ProcessContext& context) {
    // Without a folder the name alone would be a file in whatever folder is current.
    if (delivery.recipient.folder.empty()) return ProcessResult::Failed;
    SendStage stage(context, kDeliveryStart, 1.0);
    const LPath target = LPath::Join(delivery.recipient.folder, LFileNameOf(delivery.file.View()));
    return LProcessCopyFile(delivery.file, target).Process(stage);
}

// A copy that fails counts as sent all the same: the text is the user's notice of it. One that was stopped on
// the user's behalf did not fail; the next run makes it anew.
ProcessResult DeliverToFolder(const SendDelivery& delivery, ProcessContext& context) {
    const ProcessResult copied = CopyToFolder(delivery, context);
    if (copied == ProcessResult::Failed) {
        LTrace("DeliverToFolder unable to copy", delivery.recipient.folder);
        context.SetError("Unable to copy files over network");
    }
    LFile::Delete(delivery.file);
    return copied == ProcessResult::Stopped ? ProcessResult::Stopped : ProcessResult::Done;
}

ProcessResult Refuse(const SendDelivery& delivery, ProcessContext& context, const char* reason) {
    LTrace("DeliverDictation no way of delivery", reason);
    context.SetError(UnableToSend(reason));
    LFile::Delete(delivery.file);
    return ProcessResult::Failed;
}

ProcessResult DeliverByEmail(const SendDelivery& delivery, ProcessContext& context) {
    return Refuse(delivery, context, "This version of Corvane cannot send by e-mail yet.");
}

ProcessResult DeliverByFtp(const SendDelivery& delivery, ProcessContext& context) {
    return Refuse(delivery, context, "This version of Corvane cannot send by FTP yet.");
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
