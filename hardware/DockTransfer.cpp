#include "hardware/DockTransfer.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"

// The folder is listed once, before the first file is loaded: what comes later belongs to the next transfer.
// A card reader may still be filling the folder. So all files are looked at first, and each once more when
// its turn has come. One that somebody writes ends the transfer with a word to the user, before its time is
// stored: half of it would become a dictation, and the time of a newer file could hide it from the next
// transfer. Passing it over was rejected for the same reason. After loading, the file is deleted only if size
// and time are still the same and nobody has it open for writing.

namespace {

// In the order of the transfer.
constexpr const char* kPatterns[] = {"*.wav", "*.mp3", "*.sri", "*.dss"};

// A file time before 1970, as a recorder without a clock gives, counts as 1970.
int64_t SecondsOf(uint64_t fileTime) {
    return fileTime < kFileTimeOf1970 ? 0
                                      : static_cast<int64_t>((fileTime - kFileTimeOf1970) / kFileTimeSecond);
}

// The platform's patterns also know a file by its short name: "*.wav" finds "a.wave".
bool HasExtensionOf(std::string_view name, std::string_view pattern) {
    return LEqualNoCase(LSplitPath(name).extension, pattern.substr(1));
}

std::string WithSeparator(const LPath& folder) {
    std::string text(folder.View());
    std::ranges::replace(text, '/', '\\');
    if (!text.ends_with('\\')) text += '\\';
    return text;
}

bool IsWithin(const LPath& folder, const LPath& outer) {
    const std::string inside = WithSeparator(folder), around = WithSeparator(outer);
    return inside.size() >= around.size() &&
           LEqualNoCase(std::string_view(inside).substr(0, around.size()), around);
}

constexpr Settings::IntKey kDate = SettingsKeys::kDockTransferDate;

constexpr char kNewOnly[] = "turn off \"Transfer only files that are newer than the last transfer\"";

// How to get at what was not reached. The damaged file would end the next transfer too.
std::string RestText(const DockTransfer::Outcome& outcome) {
    std::string steps;
    if (outcome.end == DockTransfer::End::NotLoaded) steps += "move the damaged file away, ";
    if (outcome.isRestOld) steps += std::string(kNewOnly) + ", ";
    if (!steps.empty()) steps += "and ";
    return LFormat(
        "%s that were not transferred: %lu.\n\nThey are still in the folder. To transfer them, %sstart the "
        "transfer again.",
        outcome.end == DockTransfer::End::Stopped ? "Files" : "Further files",
        static_cast<unsigned long>(outcome.notReached), steps.c_str());
}

}  // namespace

template <class T>
std::optional<T> DockTransfer::Ask(std::function<T()> ask) {
    const auto answer = std::make_shared<T>();
    if (!m_host.RunApart([answer, ask] { *answer = ask(); })) return std::nullopt;
    return std::move(*answer);
}

DockTransfer::Listing DockTransfer::List(const LPath& folder) {
    Listing listing;
    if (!LFile::IsFolder(folder.WithoutSeparator())) {
        listing.end = End::NoFolder;
        return listing;
    }
    for (const char* const pattern : kPatterns) {
        const size_t first = listing.files.size();
        const bool isWhole = LListFolder(folder, pattern, [&](const LFolderEntry& entry) {
            const File file = {LPath::Join(folder.View(), entry.name), SecondsOf(entry.written)};
            // A folder that is being filled may name a file twice.
            const bool isKnown =
                std::any_of(listing.files.begin() + static_cast<ptrdiff_t>(first), listing.files.end(),
                            [&](const File& other) { return other.path == file.path; });
            if (!entry.isFolder && !isKnown && !file.path.Empty() && HasExtensionOf(entry.name, pattern))
                listing.files.push_back(file);
            return true;
        });
        if (!isWhole) {
            LTrace("DockTransfer::List unable to list the folder", folder.View());
            listing.end = End::Unreadable;
            return listing;
        }
    }
    return listing;
}

DockTransfer::Look DockTransfer::LookAt(const File& file) {
    const LFile opened(file.path, LFile::Open::Read);
    Look look = {Look::State::There, 0, file.time};
    if (!opened.IsOpen()) {
        look.state = LFile::IsAbsent(file.path) ? Look::State::Gone : Look::State::Held;
        return look;
    }
    look.size = opened.Size();
    look.time = std::max<int64_t>(opened.WriteTime(), 0);
    if (opened.IsBeingWritten()) look.state = Look::State::Held;
    return look;
}

DockTransfer::Outcome DockTransfer::Run() {
    Outcome outcome;
    const auto ended = [&outcome](End end) {
        outcome.end = end;
        return outcome;
    };
    const std::optional<Options> options = ReadOptions();
    if (!options) return ended(End::SettingsHeld);
    m_options = *options;
    const LPath folder = m_options.folder;
    if (folder.Empty()) return ended(End::NoFolder);
    if (IsWithin(folder, m_dataFolder)) return ended(End::OwnFolder);
    const auto listing = Ask<Listing>([folder] { return List(folder); });
    if (!listing) return ended(End::Stopped);
    if (listing->end != End::Done) return ended(listing->end);
    constexpr int64_t kLatest = std::numeric_limits<int64_t>::max() - 1;
    const int64_t bound = m_options.isNewOnly ? std::min(m_options.newest, kLatest) + 1 : 0;
    const auto held = Ask<LPath>([all = listing->files, bound] { return FindHeld(all, bound); });
    if (!held) return ended(End::Stopped);
    if (!held->Empty()) {
        outcome.file = *held;
        return ended(End::BeingWritten);
    }
    const std::span<const File> files = listing->files;
    for (size_t i = 0; i < files.size(); ++i) {
        const bool goesOn = m_host.Next(files[i].path, i, files.size());
        const End end = goesOn ? Transfer(files[i], bound, outcome) : End::Stopped;
        if (end == End::Done) continue;
        CountRest(files.subspan(end == End::Stopped || end == End::SettingsHeld ? i : i + 1), bound, outcome);
        return ended(end);
    }
    return outcome;
}

std::optional<DockTransfer::Options> DockTransfer::ReadOptions() const {
    using namespace SettingsKeys;
    const LProfileSection section(m_settings, kDate.section, kReadWaitMs);
    if (section.Result() == LReadResult::Unreadable) return std::nullopt;
    const auto isSet = [&section](const Settings::BoolKey& key) {
        return Settings::ParseBool(section.Read(key.key, key.defaultValue ? "true" : ""));
    };
    Options options;
    options.folder.Set(section.Read(kDockTransferFolder.key, kDockTransferFolder.defaultValue));
    options.deletes = isSet(kDockTransferDelete);
    options.sends = isSet(kDockAutoSend);
    options.isNewOnly = isSet(kDockTransferNew);
    options.newest = LParseInt64(section.Read(kDate.key, "0"));
    return options;
}

// False when it is not in the file afterwards: the next transfer would load and send the same once more.
bool DockTransfer::StoreNewest(int64_t time) {
    if (time <= m_options.newest) return true;
    Settings::WriteNumber(m_settings, kDate.section, kDate.key, time);
    const std::optional<Options> stored = ReadOptions();
    if (!stored || stored->newest != time) return false;
    m_options.newest = time;
    return true;
}

// The first file to be transferred that somebody writes or holds. It ends the transfer before the first is
// loaded: the time of a newer one would hide it from the next transfer of newer files.
LPath DockTransfer::FindHeld(const std::vector<File>& files, int64_t bound) {
    for (const File& file : files) {
        if (file.time < bound) continue;
        const Look look = LookAt(file);
        if (look.state == Look::State::Held && look.time >= bound) return file.path;
    }
    return {};
}

// By the times that were listed: the user waits no longer for a look at the files.
void DockTransfer::CountRest(std::span<const File> rest, int64_t bound, Outcome& outcome) const {
    for (const File& file : rest) {
        if (file.time < bound) continue;
        ++outcome.notReached;
        if (bound > 0 && file.time <= m_options.newest) outcome.isRestOld = true;
    }
}

// Done also for a file that is passed over.
DockTransfer::End DockTransfer::Transfer(const File& file, int64_t bound, Outcome& outcome) {
    const auto look = Ask<Look>([file] { return LookAt(file); });
    if (!look) return End::Stopped;
    if (look->state == Look::State::Gone) return End::Done;
    const bool isOld = look->time < bound, isEmpty = look->state == Look::State::There && look->size == 0;
    if (isOld || isEmpty) {
        if (bound > 0) ++outcome.passedOver;
        return End::Done;
    }
    if (look->state == Look::State::Held) {
        outcome.file = file.path;
        return End::BeingWritten;
    }
    if (!StoreNewest(look->time)) return End::SettingsHeld;
    const LoadedFile loaded = m_host.Load(file.path, m_options.sends);
    if (loaded == LoadedFile::Cancelled) return End::Stopped;
    if (loaded == LoadedFile::No) return End::NotLoaded;
    ++outcome.loaded;
    if (m_options.deletes && (loaded != LoadedFile::Whole || !Remove(file, *look))) ++outcome.left;
    return End::Done;
}

bool DockTransfer::Remove(const File& file, const Look& before) {
    const auto removed =
        Ask<bool>([file, before] { return LookAt(file) == before && LFile::Delete(file.path); });
    return removed.value_or(false);
}

std::string DockTransferText(const DockTransfer::Outcome& outcome, const LPath& folder) {
    using End = DockTransfer::End;
    const auto withName = [](const char* text, const LPath& path) {
        return LFormat(text, LShownText(path.View()).c_str());
    };
    std::string text;
    if (outcome.end == End::NoFolder && folder.Empty())
        text =
            "Nothing was transferred, since no folder is chosen.\n\nPlease choose the folder into which "
            "your portable recorder's files come.";
    else if (outcome.end == End::NoFolder)
        text = withName(
            "Nothing was transferred, since this folder is not there:\n\n%.259s\n\nPlease connect "
            "your portable recorder or its card, or choose another folder.",
            folder);
    else if (outcome.end == End::OwnFolder)
        text = withName(
            "Nothing was transferred, since Corvane keeps its own dictations in this folder:\n\n"
            "%.259s\n\nPlease choose that of your portable recorder.",
            folder);
    else if (outcome.end == End::Unreadable)
        text = withName(
            "Nothing was transferred, since this folder cannot be read:\n\n%.259s\n\nPlease check "
            "that your portable recorder is connected, and try again.",
            folder);
    else if (outcome.end == End::BeingWritten)
        text = withName(
            "The transfer ended at this file, which is still being written or open in another "
            "program:\n\n%.259s\n\nPlease try again when it is complete.",
            outcome.file);
    else if (outcome.end == End::SettingsHeld)
        text =
            "The transfer ended, since your settings file is open in another program or write-protected.\n\n"
            "Please try again.";
    else if (outcome.end == End::Done && outcome.loaded == 0 && outcome.passedOver > 0)
        text = LFormat(
            "No file in this folder is newer than the last transfer.\n\n"
            "Older or empty files that were passed over: %lu. To transfer them, %s.",
            static_cast<unsigned long>(outcome.passedOver), kNewOnly);
    else if (outcome.end == End::Done && outcome.loaded == 0)
        text = withName("There is nothing to transfer in this folder:\n\n%.259s", folder);
    const auto add = [&text](const std::string& more) { text += (text.empty() ? "" : "\n\n") + more; };
    if (outcome.notReached > 0) add(RestText(outcome));
    if (outcome.left > 0)
        add(LFormat(
            "Files that were transferred but not deleted: %lu.\n\nThey may be write-protected, in use "
            "by another program, or not read to their end.",
            static_cast<unsigned long>(outcome.left)));
    return text;
}
