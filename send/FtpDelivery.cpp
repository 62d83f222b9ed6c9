#include "send/FtpDelivery.h"

#include <string>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LTrace.h"
#include "store/Status.h"

// A server that hangs keeps the calling thread, and the program may be closed meanwhile. So the dictation is
// reported as arrived before anything else is asked of the server: an entry whose record says "Sent" is not
// uploaded again by the next start.

namespace {

constexpr double kUploaded = 0.95;
constexpr double kCollected = 0.97;

constexpr char kClickOk[] =
    "\n\nClick OK to continue to attempt to connect when you send your next file. Click Cancel to clear all "
    "pending send files.";

// A field of a recipient up to what would end the server's command line.
std::string OneLine(std::string_view field) {
    return std::string(field.substr(0, field.find_first_of(std::string_view("\r\n\0", 3))));
}

}  // namespace

const FtpDelivery::Stage FtpDelivery::kStages[] = {
    {0.5, &FtpDelivery::Connect, "Unable to connect to Internet."},
    {0.58, &FtpDelivery::LogOn, "Unable to log onto FTP server."},
    {0.65, &FtpDelivery::ChangeFolder, "Unable to find FTP server directory."},
    {0.75, &FtpDelivery::Upload, "Unable to upload file to FTP server."},
};

ProcessResult FtpDelivery::Run() {
    const ProcessResult result = RunStages();
    m_server.Disconnect();
    return result;
}

ProcessResult FtpDelivery::RunStages() {
    for (const Stage& stage : kStages) {
        if (m_context.CancelRequested()) return ProcessResult::Stopped;
        m_context.SetProgress(stage.progress);
        if ((this->*stage.run)()) continue;
        LTrace("FtpDelivery::RunStages failed", stage.error);
        m_context.SetError(std::string(stage.error) + kClickOk);
        return ProcessResult::Failed;
    }
    m_delivery.arrived();
    LFile::Delete(m_delivery.file);
    if (m_context.CancelRequested()) return ProcessResult::Done;
    m_context.SetProgress(kUploaded);
    CollectStatus();
    m_context.SetProgress(kCollected);
    return ProcessResult::Done;
}

bool FtpDelivery::Connect() {
    return m_server.Connect();
}

bool FtpDelivery::LogOn() {
    const SendToSettings& recipient = m_delivery.recipient;
    return m_server.LogOnServer(OneLine(recipient.ftpHost), OneLine(recipient.ftpUser),
                                OneLine(recipient.ftpPassword));
}

// Without a folder the file goes where the server puts the user.
bool FtpDelivery::ChangeFolder() {
    const std::string folder = OneLine(m_delivery.recipient.ftpFolder);
    return folder.empty() || m_server.SetCurrentDirectory(folder);
}

bool FtpDelivery::Upload() {
    return m_server.PutFile(m_delivery.file, OneLine(LFileNameOf(m_delivery.file.View())));
}

// A local file of before is not mistaken for what the server has. The server's file stays until all of it is
// stored.
void FtpDelivery::CollectStatus() {
    const LPath local = LPath::Join(m_delivery.data.folder.View(), LLeftOver::kReport);
    if (!LFile::IsAbsent(local) && !LFile::Delete(local, kMoveWaitMs)) {
        LTrace("FtpDelivery::CollectStatus unable to delete file", local.View());
        return;
    }
    const std::string remote(Status::FileIn({}, m_delivery.user).View());
    if (m_server.GetFile(remote, local, Status::kMostBytes) && ApplyStatus(local))
        m_server.DeleteFile(remote);
    LFile::Delete(local, kReadWaitMs);
}

bool FtpDelivery::ApplyStatus(const LPath& file) const {
    const CurrentUser sender = UserPaths(m_delivery.data, m_delivery.user);
    return Status(sender, m_delivery.isQueued).LoadStatus(file);
}
