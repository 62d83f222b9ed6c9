#include "store/DataRemoval.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LFileLock.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTrace.h"

// One table names every file by the folder that it lies in. The settings go last: a removal that was cut off,
// or could not delete all, leaves a data folder that works.

namespace {

using Kind = DataWalk::Kind;

constexpr uint32_t kHeldWaitMs = 100;  // for each file: the window waits

// In name and extension # stands for a digit, and * for one or more digits or hyphens.
struct Mask {
    Kind kind;  // Current: all folders of dictations
    const char* name;
    const char* extension = "";
};
constexpr Mask kFiles[] = {
    {Kind::Data, "settings", ".ini"},
    {Kind::Data, "settings.ini", LLeftOver::kProfile},
    {Kind::Data, "bgsend", ".dat"},
    {Kind::Data, "bgsend", LLeftOver::kQueue},
    {Kind::Data, "bgsend", LLeftOver::kLock},
    {Kind::Data, LLeftOver::kSendingLock},
    {Kind::Data, LLeftOver::kUsersLock},
    {Kind::Data, LLeftOver::kKeysLock},
    {Kind::Data, LLeftOver::kReport},
    {Kind::Data, "s#######", ".sta"},
    {Kind::User, "user", ".dat"},
    {Kind::User, "user.dat", LLeftOver::kProfile},
    {Kind::User, "rec*", ".dat"},
    {Kind::User, "rec*", LLeftOver::kRecipient},
    {Kind::User, LLeftOver::kInUseLock},
    {Kind::User, LLeftOver::kMove},
    {Kind::User, "moving", LLeftOver::kLock},
    {Kind::User, "moving", LLeftOver::kJournal},
    {Kind::User, LLeftOver::kDeletion},
    {Kind::User, "deleting", LLeftOver::kJournal},
    {Kind::User, "untold", ".txt"},
    {Kind::User, "untold", LLeftOver::kUntold},
    {Kind::Current, "########", ".dat"},
    {Kind::Current, "########", ".wav"},
    {Kind::Current, "########", ".txt"},
    {Kind::Current, "########.dat", LLeftOver::kProfile},
    {Kind::Current, "########", LLeftOver::kNotes},
    {Kind::Current, "########", LLeftOver::kAudio},
    {Kind::Current, "########", LLeftOver::kInsert},
    {Kind::Current, "########", LLeftOver::kInsertBeside},
    {Kind::Current, "########", LLeftOver::kSetAsidePattern},
    {Kind::Current, "########", LLeftOver::kLock},
    {Kind::Current, "wav*", ".wav"},  // what is sent
    {Kind::Current, "dct*", ".dct"},
};

// The folder of each kind, from User on.
constexpr const char* kFolders[] = {"########", "Current", "Sent", LLeftOver::kImport};
constexpr size_t kOfData = 1;  // the first of them lies in the data folder, the others in that of a user

bool Fits(std::string_view mask, std::string_view name) {
    if (mask.empty() || name.empty()) return mask.empty() && name.empty();
    const std::string_view rest = name.substr(1);
    if (mask[0] == '*')
        return (LIsDigit(name[0]) || name[0] == '-') && (Fits(mask, rest) || Fits(mask.substr(1), rest));
    const bool fits = mask[0] == '#' ? LIsDigit(name[0]) : LToUpper(mask[0]) == LToUpper(name[0]);
    return fits && Fits(mask.substr(1), rest);
}

bool IsOurs(Kind kind, std::string_view name) {
    kind = std::min(kind, Kind::Current);
    return std::ranges::any_of(kFiles, [&](const Mask& mask) {
        return mask.kind == kind && Fits(std::string(mask.name) + mask.extension, name);
    });
}

// The kind of a folder inside one of another kind; Data when it is not ours.
Kind KindOf(Kind outside, std::string_view name) {
    const size_t begin = outside == Kind::Data ? 0 : kOfData;
    const size_t end = outside == Kind::Data ? kOfData : outside == Kind::User ? std::size(kFolders) : 0;
    for (size_t i = begin; i < end; ++i)
        if (Fits(kFolders[i], name)) return static_cast<Kind>(i + 1);
    return Kind::Data;
}

// By these a user's folder is known. They are deleted last, so that a removal that was cut off can go on.
constexpr std::string_view kMarks[] = {"user.dat", "user.dat~", LLeftOver::kInUseLock};

// Eight digits may also be a date that somebody else has given to a folder. One that does not answer counts.
bool IsUsers(const LPath& folder) {
    return LFileNameOf(folder.View()) == "00000000" ||
           std::ranges::any_of(kMarks, [&](std::string_view name) {
               return !LFile::IsAbsent(LPath::Join(folder.View(), name));
           });
}

bool IsAudio(std::string_view name) {
    return LEqualNoCase(LSplitPath(name).extension, ".wav");
}

// The order in which the files of a folder are taken.
int TurnOf(const std::string& name) {
    const auto isMark = [&](std::string_view mark) { return LEqualNoCase(mark, name); };
    return IsAudio(name) ? 0 : std::ranges::any_of(kMarks, isMark) ? 2 : 1;
}

// On a drive that is away everything seems absent.
bool IsDriveThere(const LPath& folder) {
    return LFile::IsFolder(LRootOf(folder.View()));
}

}  // namespace

Holding HoldsDictations(const LPath& folder) {
    std::vector<LPath> users;
    bool isFound = LFile::Exists(LPath::Join(folder.View(), "settings.ini"));
    bool isWhole = IsDriveThere(folder) && LListFolder(folder, "*.*", [&](const LFolderEntry& entry) {
                       if (entry.isFolder && KindOf(Kind::Data, entry.name) == Kind::User)
                           users.push_back(LPath::Join(folder.View(), entry.name));
                       return true;
                   });
    const auto isNone = [&](const LFolderEntry& entry) {
        isFound = isFound || (!entry.isFolder && IsOurs(Kind::Current, entry.name));
        return !isFound;
    };
    for (const LPath& user : users)
        for (size_t i = kOfData; !isFound && i < std::size(kFolders); ++i)
            isWhole = LListFolder(LPath::Join(user.View(), kFolders[i]), "*.*", isNone) && isWhole;
    return isFound ? Holding::Yes : isWhole ? Holding::No : Holding::Unknown;
}

ProcessResult DataWalk::Process(ProcessContext& context) {
    m_kept = 0;
    m_unread = m_link = {};
    if (!Walk(context, m_folder, Kind::Data, 0, 1)) return ProcessResult::Stopped;
    if (m_kept == 0) return ProcessResult::Done;
    if (!m_unread.Empty())
        context.SetError(LFormat("The folder %s cannot be read.", m_unread.c_str()));
    else if (!m_link.Empty())
        context.SetError(
            LFormat("The folder %s is only a link to another one. Recordings that lie there cannot be "
                    "deleted together "
                    "with Corvane.",
                    m_link.c_str()));
    else
        context.SetError(
            LFormat("%ld of the files and folders in %s could not be deleted. Another program may have them "
                    "open, or you have no right to delete them.",
                    static_cast<long>(m_kept), m_folder.c_str()));
    return ProcessResult::Failed;
}

// False when it was cancelled. The progress goes from one fraction to the other.
bool DataWalk::Walk(ProcessContext& context, const LPath& folder, Kind kind, double from, double to) {
    std::vector<std::string> files, folders;
    const auto sort = [&](const LFolderEntry& entry) {
        if (!entry.isFolder && IsOurs(kind, entry.name)) files.push_back(entry.name);
        if (!entry.isFolder || KindOf(kind, entry.name) == Kind::Data) return true;
        const LPath inside = LPath::Join(folder.View(), entry.name);
        if (kind == Kind::Data && !IsUsers(inside)) return true;
        if (!entry.isLink) {
            folders.push_back(entry.name);
            return true;
        }
        LTrace("DataWalk::Walk left out a link", inside.View());
        m_link = inside;
        ++m_kept;
        return true;
    };
    if (!Enter(folder, kind)) return true;
    if ((kind == Kind::Data && !IsDriveThere(folder)) || !LListFolder(folder, "*.*", sort)) {
        LTrace("DataWalk::Walk unable to list", folder.View());
        m_unread = folder;
        ++m_kept;
        return true;
    }
    const double step = (to - from) / static_cast<double>(folders.size() + 1);
    for (const std::string& name : folders) {
        const LPath inside = LPath::Join(folder.View(), name);
        if (!Walk(context, inside, KindOf(kind, name), from, from + step)) return false;
        from += step;
    }
    double done = 0;
    for (const int turn : {0, 1, 2}) {
        for (const std::string& name : files) {
            if (TurnOf(name) != turn) continue;
            if (context.CancelRequested()) return false;
            Take(LPath::Join(folder.View(), name), kind);
            context.SetProgress(from + step * ++done / static_cast<double>(files.size()));
        }
    }
    Leave(folder);
    return true;
}

bool DataCount::Enter(const LPath&, Kind kind) {
    if (kind == Kind::Data) m_contents = {};
    if (kind == Kind::User) m_isCounted = false;
    return true;
}

// A dictation has a record, or audio that has lost it.
void DataCount::Take(const LPath& file, Kind kind) {
    const LPathParts parts = LSplitPath(file.View());
    const bool isAudio = IsAudio(file.View());
    if ((kind != Kind::Current && kind != Kind::Sent) || !Fits("########", parts.name)) return;
    if (isAudio) m_contents.audioMs += m_lengthMs(file);
    if (isAudio ? !LFile::IsAbsent(file.WithExtension(".dat")) : !LEqualNoCase(parts.extension, ".dat"))
        return;
    ++m_contents.dictations;
    m_contents.notSent += kind == Kind::Current;
    m_contents.users += !m_isCounted;
    m_isCounted = true;
}

bool DataRemoval::Enter(const LPath& folder, Kind kind) {
    if (kind == Kind::Data) m_keptBefore = 0;
    if (kind != Kind::User) return true;
    m_keptBefore = m_kept;
    const LPath lock = LPath::Join(folder.View(), LLeftOver::kInUseLock);
    if (!LFile::Exists(lock) || LFileLock().TryTake(lock) != LFileLock::Result::Held) return true;
    ++m_kept;
    return false;
}

void DataRemoval::Take(const LPath& file, Kind kind) {
    const bool isNeeded = kind == Kind::Data   ? m_kept > 0
                          : kind == Kind::User ? m_kept > m_keptBefore
                                               : m_kept > 0 && !IsAudio(file.View()) &&
                                                     LFile::Exists(file.WithExtension(".wav"));
    if (isNeeded) return;
    LFile::MakeWritable(file);
    if (LFile::Delete(file, kHeldWaitMs) || LFile::IsAbsent(file)) return;
    LTrace("DataRemoval::Take unable to delete", file.View());
    ++m_kept;
}

void DataRemoval::Leave(const LPath& folder) {
    LFile::DeleteFolder(folder);
}
