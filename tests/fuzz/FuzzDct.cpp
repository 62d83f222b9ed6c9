#include <stdlib.h>

#include <algorithm>
#include <string>
#include <vector>

#include "audio/wave/LWaveFile.h"
#include "base/LProfile.h"
#include "send/DctFormat.h"
#include "send/LoadDCTProcess.h"
#include "store/DictationStore.h"
#include "store/NotesFile.h"
#include "store/SettingsKeys.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// A folder for a dictation, in it one that the platform takes for its temporary files.
struct World {
    World() {
        LFile::MakeFolder(temporary);
        std::string native(temporary.View());
        for (char& c : native) c = c == '\\' ? '/' : c;
        setenv("TMPDIR", native.c_str(), 1);
    }
    static int Count(const LPath& folder) {
        int count = 0;
        LListFolder(folder, "*", [&](const LFolderEntry&) { return ++count > 0; });
        return count;
    }
    ScratchFolder scratch;
    const LPath temporary = LPath::Join(scratch.path.View(), "temporary");
    const LPath dct = LPath::Join(temporary.View(), "a.dct");
    const DictationFiles files = DictationFiles::OfNumber(LPath(std::string(scratch.path.View()) + "/"), 12);
};

struct Context final : ProcessContext {
    bool CancelRequested() override { return --left == 0; }
    void SetProgress(double fraction) override { Require(fraction >= 0 && fraction <= 0.95); }
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view text) override { hasError = !text.empty(); }
    int left = 0;
    bool hasError = false;
};

}  // namespace

// The first byte says after how many questions the user cancels, and whether the file's length is made right,
// which few inputs would hit; the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const World world;
    if (size == 0) return 0;
    LProfile::Write(world.files.record, RecordKeys::kSection, RecordKeys::kNumber.key, "3");
    std::vector<uint8_t> file(data + 1, data + size);
    for (size_t i = 0; i < 4 && file.size() >= 6 && data[0] < 128; ++i)
        file[kDctLengthOffset + i] = static_cast<uint8_t>(file.size() >> 8 * i);
    if (!LFile(world.dct, LFile::Open::CreateNew).WriteAll(file)) return 0;
    Context context;
    context.left = data[0] % 128;
    const ProcessResult result = LoadDCTProcess(world.dct, world.files).Process(context);
    Require(World::Count(world.temporary) == 1);
    const LProfileSection record(world.files.record, RecordKeys::kSection);
    Require(record.Read(RecordKeys::kNumber.key, "") == "3");
    Require(record.Read(RecordKeys::kSendStatus.key, "none") == "none");
    const bool hasAudio = LFile::Exists(world.files.audio), hasNotes = LFile::Exists(world.files.notes);
    Require(hasAudio == hasNotes && (result == ProcessResult::Done || !hasAudio));
    Require(result == ProcessResult::Failed ? context.hasError : true);
    LWaveInfo info;
    if (hasAudio) Require(LWaveFile::ReadInfo(world.files.audio, info) && info.isOurLayout);
    std::vector<uint8_t> notes;
    if (hasNotes) {
        Require(LFile::ReadWhole(world.files.notes, NotesFile::kMaxBytes, notes));
        Require(std::find(notes.begin(), notes.end(), 0) == notes.end() - 1);
    }
    Require(DeleteDictationFiles(world.files));
    return 0;
}
