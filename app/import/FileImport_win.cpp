#include "app/import/FileImport_win.h"

#include <cderr.h>
#include <commdlg.h>

#include <string>

#include "app/import/ForeignDecoders_win.h"
#include "app/import/ImportProcess.h"
#include "app/import/ImportRoute.h"
#include "app/import/ImportSelection.h"
#include "base/LProcessApart.h"
#include "base/LText.h"
#include "store/SettingsKeys.h"

namespace {

constexpr char kUnknownKind[] =
    "Files of this kind cannot be loaded.\n\nPlease choose a file whose name ends in .dct, .wav, .mp3, .ra, "
    ".rm, .au, .mp2, .aif, .sri or .dss.";
constexpr char kNotPublished[] =
    "The dictation could not be stored.\n\nA file of its number may be open in another program, or the disk "
    "may be write-protected. Please load the file again.";
constexpr char kNotRun[] = "The file could not be loaded. Please try again.";
constexpr char kLeftOut[] = "\n\nFiles that were not loaded: %lu. Please load them again without this one.";
constexpr char kTooMany[] = "Too many files were chosen at once. Please choose fewer of them.";

// Shows the platform's dialog; the buffer receives what it says. False when nothing was chosen.
bool AskForFiles(HWND owner, bool send, const LPath& folder, std::vector<char>& buffer, bool& isTooMany) {
    const std::string filter = ImportFilter();
    OPENFILENAMEA open = {};
    open.lStructSize = sizeof open;
    open.hwndOwner = owner;
    open.lpstrFilter = filter.c_str();
    open.lpstrFile = buffer.data();
    open.nMaxFile = static_cast<DWORD>(buffer.size());
    open.lpstrInitialDir = folder.Empty() ? nullptr : folder.c_str();
    open.lpstrTitle = send ? "Load and Send File(s)" : "Load File(s)";
    open.Flags = OFN_ALLOWMULTISELECT | OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST |
                 OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetOpenFileNameA(&open)) return true;
    isTooMany = CommDlgExtendedError() == FNERR_BUFFERTOOSMALL;
    return false;
}

}  // namespace

void FileImport::Tell(const LPath& source, std::string_view text) {
    m_runner.Box(text, LShownText(LFileNameOf(source.View())), MB_OK | MB_ICONEXCLAMATION);
}

FileImport::Loaded FileImport::LoadOne(const LPath& source, size_t behind) {
    const auto fail = [&](std::string text) {
        if (behind > 0) text += LFormat(kLeftOut, static_cast<unsigned long>(behind));
        Tell(source, text);
        return Loaded();
    };
    const ImportRow* const row = FindImportRow(source.View());
    if (row == nullptr) return fail(kUnknownKind);
    const auto work = std::make_shared<ImportProcess>(m_state.user, source, *row, MakeForeignDecoders());
    LProcessApart process(work);
    std::string error;
    const ProcessResult result = m_runner.Run(process, row->title, error);
    if (result != ProcessResult::Done) {
        if (result == ProcessResult::Failed && error.empty()) error = kNotRun;
        return error.empty() ? Loaded{LoadedFile::Cancelled, {}} : fail(error);
    }
    StagedDictation& dictation = work->Dictation();
    bool isReady = true;
    while (isReady && m_owner.IsNumberListed(dictation.Number())) isReady = dictation.TakeOtherNumber();
    if (!isReady || !dictation.Publish()) return fail(kNotPublished);
    m_owner.ListLoaded(dictation.Files());
    if (!error.empty()) Tell(source, error);
    return {work->IsWhole() ? LoadedFile::Whole : LoadedFile::Partly, dictation.Files()};
}

// What the user is to listen to first stays.
void FileImport::SendWhole(const Loaded& loaded, bool& send) {
    if (send && loaded.what == LoadedFile::Whole) send = m_owner.SendLoaded(loaded.files);
}

LoadedFile FileImport::Load(const LPath& source, bool& send) {
    const Loaded loaded = LoadOne(source, 0);
    if (m_runner.MayGoOn()) SendWhole(loaded, send);
    return loaded.what;
}

std::optional<std::vector<LPath>> FileImport::LoadChosen(bool send) {
    const LPath& settings = m_state.data.settingsFile;
    const LPath folder(Settings::Read(settings, SettingsKeys::kLoadFolder));
    std::vector<char> buffer(kSelectionBytes);
    bool isTooMany = false;
    const INT_PTR isChosen = m_runner.RunModal(LModalRunner::Activity::GoesOn, [&](HWND owner) -> INT_PTR {
        return AskForFiles(owner, send, folder, buffer, isTooMany) ? 1 : 0;
    });
    if (isTooMany) m_runner.Tell(kTooMany);
    if (isChosen != 1 || !m_runner.MayGoOn()) return std::nullopt;
    const ImportSelection chosen = ImportSelection::Parse(buffer);
    std::vector<LPath> records;
    for (size_t i = 0; i < chosen.files.size(); ++i) {
        const Loaded loaded = LoadOne(chosen.files[i], chosen.files.size() - 1 - i);
        if (loaded.what == LoadedFile::Cancelled || loaded.what == LoadedFile::No) break;
        records.push_back(loaded.files.record);
        if (!m_runner.MayGoOn()) break;
        SendWhole(loaded, send);
    }
    Settings::Write(settings, SettingsKeys::kLoadFolder, std::string(chosen.folder.View()));
    return records;
}
