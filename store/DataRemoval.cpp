#include "store/DataRemoval.h"

#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LFileLock.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTrace.h"

// One table names every file by the folder that it lies in. A folder is listed as a whole before anything in
// it is deleted, and its own folders come before it, so that the settings go last: a removal that was cut off
// leaves a data folder that works.

namespace {

constexpr uint32_t kHeldWaitMs = 100;  // for each file: the window waits

// In both parts # stands for a digit, and * for one or more digits or hyphens.
struct Mask {
    const char* name;
    const char* extension = "";
};

constexpr Mask kDataFiles[] = {
    {"settings", ".ini"},         {"settings.ini", LLeftOver::kProfile},
    {"bgsend", ".dat"},           {"bgsend", LLeftOver::kQueue},
    {"bgsend", LLeftOver::kLock}, {"bgsend.dat", LLeftOver::kProfile},
    {LLeftOver::kSendingLock},    {LLeftOver::kUsersLock},
    {LLeftOver::kKeysLock},       {LLeftOver::kReport},
    {"s#######", ".sta"},
};
constexpr Mask kUserFiles[] = {
    {"user", ".dat"},
    {"user.dat", LLeftOver::kProfile},
    {"rec*", ".dat"},
    {"rec*", LLeftOver::kRecipient},
    {LLeftOver::kInUseLock},
    {LLeftOver::kMove},
    {"moving", LLeftOver::kLock},
    {"moving", LLeftOver::kJournal},
    {LLeftOver::kDeletion},
    {"deleting", LLeftOver::kJournal},
    {"untold", ".txt"},
    {"untold", LLeftOver::kUntold},
};
constexpr Mask kDictationFiles[] = {
    {"########", ".dat"},
    {"########", ".wav"},
    {"########", ".txt"},
    {"########.dat", LLeftOver::kProfile},
    {"########", LLeftOver::kNotes},
    {"########", LLeftOver::kAudio},
    {"########", LLeftOver::kInsert},
    {"########", LLeftOver::kInsertBeside},
    {"########", LLeftOver::kSetAsidePattern},
    {"########", LLeftOver::kLock},
    {"wav*", ".wav"},  // what is sent
    {"dct*", ".dct"},
};

enum class Kind { Data, User, Current, Sent, Import };
struct Place {
    std::span<const Mask> files;
    struct Inside {
        const char* mask;
        Kind kind;
    };
    std::span<const Inside> folders;
};
constexpr char kUserMask[] = "########";
constexpr Place::Inside kUsers[] = {{kUserMask, Kind::User}};
constexpr Place::Inside kOfUser[] = {
    {"Current", Kind::Current}, {"Sent", Kind::Sent}, {LLeftOver::kImport, Kind::Import}};

Place PlaceOf(Kind kind) {
    if (kind == Kind::Data) return {kDataFiles, kUsers};
    if (kind == Kind::User) return {kUserFiles, kOfUser};
    return {kDictationFiles, {}};
}

bool Fits(std::string_view mask, std::string_view name) {
    if (mask.empty() || name.empty()) return mask.empty() && name.empty();
    const std::string_view rest = name.substr(1);
    if (mask[0] == '*')
        return (LIsDigit(name[0]) || name[0] == '-') && (Fits(mask, rest) || Fits(mask.substr(1), rest));
    const bool fits = mask[0] == '#' ? LIsDigit(name[0]) : LToUpper(mask[0]) == LToUpper(name[0]);
    return fits && Fits(mask.substr(1), rest);
}

bool IsOurs(std::span<const Mask> masks, std::string_view name) {
    return std::ranges::any_of(
        masks, [&](const Mask& mask) { return Fits(std::string(mask.name) + mask.extension, name); });
}

struct OurFolder {
    LPath path;
    Kind kind;
    LPath user;  // the folder of its user; empty for the data folder
    bool isWhole;
    std::vector<std::string> files;
};

// The folder with all that are ours in it, each behind those inside it.
void Collect(const LPath& path, Kind kind, const LPath& user, std::vector<OurFolder>& found) {
    const Place place = PlaceOf(kind);
    OurFolder own{path, kind, user, false, {}};
    std::vector<std::pair<LPath, Kind>> inside;
    own.isWhole = LListFolder(path, "*.*", [&](const LFolderEntry& entry) {
        if (!entry.isFolder && IsOurs(place.files, entry.name)) own.files.push_back(entry.name);
        for (const Place::Inside& folder : place.folders)
            if (entry.isFolder && !entry.isLink && Fits(folder.mask, entry.name))
                inside.emplace_back(LPath::Join(path.View(), entry.name), folder.kind);
        return true;
    });
    for (const auto& [folder, ofKind] : inside)
        Collect(folder, ofKind, kind == Kind::Data ? folder : user, found);
    found.push_back(std::move(own));
}

std::vector<OurFolder> Collect(const LPath& dataFolder) {
    std::vector<OurFolder> found;
    Collect(dataFolder, Kind::Data, {}, found);
    return found;
}

std::string UnreadText(const LPath& folder) {
    return LFormat("The folder %s cannot be read.", folder.c_str());
}

bool IsAudio(std::string_view name) {
    return LEqualNoCase(LSplitPath(name).extension, ".wav");
}

// Whether a program runs for this user, on another machine too.
bool IsInUse(const LPath& user) {
    const LPath lock = LPath::Join(user.View(), LLeftOver::kInUseLock);
    return !user.Empty() && LFile::Exists(lock) && LFileLock().TryTake(lock) == LFileLock::Result::Held;
}

bool DeleteFile(const LPath& file) {
    if (LFile::IsReadOnly(file)) LFile::MakeWritable(file);
    if (LFile::Delete(file, kHeldWaitMs) || LFile::IsAbsent(file)) return true;
    LTrace("DataRemoval::Process unable to delete", file.View());
    return false;
}

}  // namespace

Holding HoldsDictations(const LPath& folder) {
    if (LFile::Exists(LPath::Join(folder.View(), "settings.ini"))) return Holding::Yes;
    // On a drive that is away everything seems absent.
    if (!LFile::IsFolder(LRootOf(folder.View()))) return Holding::Unknown;
    std::vector<LPath> users;
    bool isWhole = LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
        if (entry.isFolder && Fits(kUserMask, entry.name))
            users.push_back(LPath::Join(folder.View(), entry.name));
        return true;
    });
    bool isFound = false;
    for (const LPath& user : users) {
        for (const Place::Inside& place : kOfUser) {
            isWhole = LListFolder(LPath::Join(user.View(), place.mask), "*.*",
                                  [&](const LFolderEntry& entry) {
                                      isFound = !entry.isFolder && IsOurs(kDictationFiles, entry.name);
                                      return !isFound;
                                  }) &&
                      isWhole;
            if (isFound) return Holding::Yes;
        }
    }
    return isWhole ? Holding::No : Holding::Unknown;
}

ProcessResult DataCount::Process(ProcessContext& context) {
    m_contents = {};
    std::vector<LPath> audio;
    LPath lastUser;
    for (const OurFolder& folder : Collect(m_folder)) {
        if (!folder.isWhole) {
            LTrace("DataCount::Process unable to list", folder.path.View());
            context.SetError(UnreadText(folder.path));
            return ProcessResult::Failed;
        }
        if (folder.kind != Kind::Current && folder.kind != Kind::Sent) continue;
        std::set<std::string_view> dictations;
        for (const std::string& file : folder.files) {
            const LPathParts parts = LSplitPath(file);
            const bool isRecord = LEqualNoCase(parts.extension, ".dat");
            if ((!isRecord && !IsAudio(file)) || !Fits("########", parts.name)) continue;
            dictations.insert(parts.name);
            if (!isRecord) audio.push_back(LPath::Join(folder.path.View(), file));
        }
        const auto count = static_cast<int32_t>(dictations.size());
        m_contents.dictations += count;
        if (folder.kind == Kind::Current) m_contents.notSent += count;
        if (count > 0 && !(folder.user == lastUser)) {
            ++m_contents.users;
            lastUser = folder.user;
        }
    }
    for (size_t i = 0; i < audio.size(); ++i) {
        if (context.CancelRequested()) return ProcessResult::Stopped;
        m_contents.audioMs += m_lengthMs(audio[i]);
        context.SetProgress(static_cast<double>(i + 1) / static_cast<double>(audio.size()));
    }
    return ProcessResult::Done;
}

// Deletes the files of a folder, the audio of each dictation first: where that cannot be deleted, the others
// stay with it.
bool DataRemoval::DeleteFiles(ProcessContext& context, const LPath& folder, std::vector<std::string> files) {
    const auto order = [](const std::string& name) {
        return std::pair(LUpper(LSplitPath(name).name), !IsAudio(name));
    };
    std::ranges::sort(files, {}, order);
    std::string kept;
    for (const std::string& file : files) {
        if (context.CancelRequested()) return false;
        const std::string name = order(file).first;
        if (name == kept || !DeleteFile(LPath::Join(folder.View(), file))) {
            kept = name;
            ++m_kept;
        }
        context.SetProgress(static_cast<double>(++m_done) / m_total);
    }
    return true;
}

ProcessResult DataRemoval::Process(ProcessContext& context) {
    const std::vector<OurFolder> folders = Collect(m_folder);
    m_kept = m_done = m_total = 0;
    for (const OurFolder& folder : folders) m_total += static_cast<int32_t>(folder.files.size());
    std::string unread;
    LPath user;
    bool isInUse = false;
    int32_t keptBefore = 0;
    for (const OurFolder& folder : folders) {
        if (!(folder.user == user)) {
            user = folder.user;
            isInUse = IsInUse(user);
            keptBefore = folder.kind == Kind::Data ? 0 : m_kept;
        }
        if (!folder.isWhole) unread = "\n\n" + UnreadText(folder.path);
        // What stays is to be found as it was: with its user's files and the settings.
        const bool isNeeded = (folder.kind == Kind::User || folder.kind == Kind::Data) && m_kept > keptBefore;
        if (!folder.isWhole || isInUse || isNeeded) {
            m_kept += static_cast<int32_t>(folder.files.size()) + !folder.isWhole;
            continue;
        }
        if (!DeleteFiles(context, folder.path, folder.files)) return ProcessResult::Stopped;
        LFile::DeleteFolder(folder.path);
    }
    if (m_kept == 0) return ProcessResult::Done;
    context.SetError(
        LFormat("%ld of the files in %s could not be deleted. Another program may have them open, or you "
                "have no right to delete them.",
                static_cast<long>(m_kept), m_folder.c_str()) +
        unread);
    return ProcessResult::Failed;
}
