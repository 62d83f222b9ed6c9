#include "store/CollectStatus.h"

#include <utility>

#include "base/LFile.h"
#include "store/SendToSettings.h"
#include "store/Status.h"

bool CollectStatus::Begin(const DataFolder& data, const CurrentUser& user, AskQueue isQueued,
                          std::function<void()> done) {
    if (IsRunning()) return false;
    m_data = data;
    m_user = user;
    m_isQueued = std::move(isQueued);
    m_done = std::move(done);
    return Start(kThreadLowest);
}

void CollectStatus::ThreadFunction() {
    Status status(m_user, m_isQueued);
    const int32_t count = RecipientCount(m_user.userFile);
    for (int32_t i = 0; i < count && !StopRequested(); ++i) {
        SendToSettings recipient;
        if (!recipient.Load(RecipientPath(m_data.folder, m_user.number, i))) continue;
        // Without a folder the file would be looked for in whichever folder is current.
        if (recipient.method != static_cast<uint32_t>(SendToSettings::Method::Folder) ||
            recipient.folder.empty())
            continue;
        const LPath file = Status::FileIn(recipient.folder, m_user.number);
        if (status.LoadStatus(file)) LFile::Delete(file);
    }
    m_done();
}
