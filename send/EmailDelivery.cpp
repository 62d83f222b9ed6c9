#include "send/EmailDelivery.h"

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "send/Email.h"
#include "send/EmailSMTPSendProcess.h"
#include "send/MailMessage.h"
#include "send/SendError.h"
#include "send/SendStage.h"
#include "store/SettingsKeys.h"

// Settings that cannot be read keep the dictation in the queue: their defaults would send it by another
// program than the one that was chosen.

namespace {

constexpr double kMapiProgress = 0.75;
constexpr double kSmtpFrom = 0.5;
constexpr char kNoMapi[] =
    "Unable to send mail using MAPI.\r\n"
    "Please check you have setup your email software correctly as the default MAPI server.";

ProcessResult SendByMapi(const MailMessage& mail, const LPath& file, ProcessContext& context) {
    context.SetProgress(kMapiProgress);
    if (Email::SendMAPI(mail.to, mail.subject, mail.body, file)) return ProcessResult::Done;
    context.SetError(kNoMapi);
    LFile::Delete(file);
    return ProcessResult::Failed;
}

ProcessResult SendBySmtp(const MailMessage& mail, const std::string& host, const SendDelivery& delivery,
                         ProcessContext& context) {
    SendStage stage(context, kSmtpFrom, 1.0);
    EmailSMTPSendProcess process(mail, host);
    process.SetArrived(delivery.arrived);
    const ProcessResult result = process.Process(stage);
    LFile::Delete(delivery.file);
    return result;
}

}  // namespace

ProcessResult DeliverByEmail(const SendDelivery& delivery, ProcessContext& context) {
    const auto& [section, useMapi, byMapi] = SettingsKeys::kUseMapi;
    const LProfileSection settings(delivery.data.settingsFile, section, kReadWaitMs);
    if (settings.Result() == LReadResult::Unreadable) {
        LTrace("DeliverByEmail unable to read settings", delivery.data.settingsFile.View());
        context.SetError(UnableToSend(
            "The settings are open in another program. It stays in the queue and is sent later."));
        LFile::Delete(delivery.file);
        return ProcessResult::Stopped;
    }
    const MailMessage mail =
        MailMessage::OfDictation(delivery.recipient.emailAddress, delivery.dictation, delivery.sender.name,
                                 delivery.sender.email, delivery.file);
    if (Settings::ParseBool(settings.Read(useMapi, byMapi ? "true" : "false")))
        return SendByMapi(mail, delivery.file, context);
    return SendBySmtp(mail, settings.Read(SettingsKeys::kMailHost.key, SettingsKeys::kMailHost.defaultValue),
                      delivery, context);
}

std::string Email::MapiAddress(std::string_view address) {
    const bool namesKind = address.find(':') != std::string_view::npos;
    return (namesKind ? "" : "SMTP:") + std::string(address);
}
