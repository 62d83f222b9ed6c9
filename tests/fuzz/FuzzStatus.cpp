#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/Status.h"
#include "tests/fuzz/Fuzz.h"

// Whatever a report holds, a dictation keeps its other keys, and its status is short and on one line.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const ScratchFolder folder;
    static const CurrentUser user = SelectUser(DataFolder::FromText(folder.path.View()), 7);  // 12 is sent
    const DictationFiles files = DictationFiles::OfNumber(user.sentFolder, 12);
    const std::string_view record = "[file]\r\nname=Letter\r\nnumber=12\r\nsendstatus=Sent\r\nsenddate=5\r\n";
    const LPath report = Status::FileIn(user.currentFolder.View(), 7);
    if (!LFile(files.record, LFile::Open::CreateNew)
             .WriteAll({reinterpret_cast<const uint8_t*>(record.data()), record.size()}) ||
        !LFile(report, LFile::Open::CreateNew).WriteAll({data, size}))
        return 0;
    Require(Status(user, [](const LPath&) { return QueueAnswer::No; }).LoadStatus(report));
    const DictationRecord after = DictationRecord::Read(files.record);
    Require(after.name == "Letter" && after.number == 12 && after.sendDate == 5);
    Require(after.sendStatus.size() <= 15 && after.sendStatus.find_first_of("\r\n") == std::string::npos);
    return 0;
}
