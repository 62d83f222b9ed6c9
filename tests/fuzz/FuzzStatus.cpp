#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/Status.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// A user with one sent dictation, number 12.
struct World {
    World() {
        LFile::Delete(scratch.path);
        LFile::MakeFolder(scratch.path);
        user = SelectUser(DataFolder::FromText(scratch.path.View()), 7);
    }
    Scratch scratch;
    CurrentUser user;
};

}  // namespace

// Whatever a report holds, a dictation keeps its other keys, and its status is short and on one line.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const World world;
    const DictationFiles files = DictationFiles::OfNumber(world.user.sentFolder, 12);
    const std::string_view record = "[file]\r\nname=Letter\r\nnumber=12\r\nsendstatus=Sent\r\nsenddate=5\r\n";
    const LPath report = Status::FileIn(world.user.currentFolder.View(), 7);
    if (!LFile(files.record, LFile::Open::CreateNew)
             .WriteAll({reinterpret_cast<const uint8_t*>(record.data()), record.size()}) ||
        !LFile(report, LFile::Open::CreateNew).WriteAll({data, size}))
        return 0;
    Require(Status(world.user, [](const LPath&) { return QueueAnswer::No; }).LoadStatus(report));
    const DictationRecord after = DictationRecord::Read(files.record);
    Require(after.name == "Letter" && after.number == 12 && after.sendDate == 5);
    Require(after.sendStatus.size() <= 15 && after.sendStatus.find_first_of("\r\n") == std::string::npos);
    return 0;
}
