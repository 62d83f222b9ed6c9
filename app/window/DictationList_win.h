#pragma once

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <vector>

#include "app/transport/CurrentDictation.h"
#include "app/window/DictationRow.h"
#include "ui/LWin.h"

// The rows of the current user's dictations. Each row's item data is the dictation's number; the row acts on
// the files of its record's file name, also when the number inside the record says otherwise. Thread: the
// window thread.
class DictationList final : public DictationSelection {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // The rows have changed, and with them perhaps the current dictation.
        virtual void FileChanged() = 0;
        // Selection or focus move; where they come to rest is known only when the list has dealt with its
        // message.
        virtual void SelectionMoved() = 0;
        virtual void PlayFromStart() = 0;
        // Before the name of a row is edited, and when the editor has closed.
        virtual void BeforeRename() = 0;
        virtual void AfterRename(int32_t number) = 0;
    };

    void Attach(HWND list, Owner& owner);
    // The font goes with the window.
    void ReleaseFont() { m_font.Reset(); }

    // Empties the list and adds every record of the folder; the last row is selected and focused.
    void SetupFilesList(const LPath& folder);
    // Index of the row; a number that is listed already is not added again.
    int AddFile(const LPath& record);
    // The row moves to the end and keeps its selection.
    void UpdateFile(const LPath& record);
    void UpdateNumber(int32_t number);
    // The selection moves to the row that takes its place.
    void RemoveFile(const LPath& record);
    // Makes this row the only selected one.
    void SelectFile(const LPath& record);
    // Scrolls to the current dictation, after the list has changed its size.
    void ShowCurrent();
    void BeginRename();
    // While a name is being edited its row must stay where it is.
    bool IsRenaming() const { return ListView_GetEditControl(m_list) != nullptr; }

    int Count() const { return ListView_GetItemCount(m_list); }
    int SelectedCount() const { return static_cast<int>(ListView_GetSelectedCount(m_list)); }
    std::optional<DictationFiles> Focused() const override;
    std::optional<DictationFiles> First() const override;
    bool IsSelected(const DictationFiles& files) const override;
    // The name in a record's row; empty when it has none.
    std::string NameOf(const LPath& record) const;
    bool HoldsNumber(int32_t number) const { return IndexOfNumber(number) >= 0; }
    // The number under which a record is listed.
    std::optional<int32_t> NumberOf(const LPath& record) const;
    // Taken before a command on several rows begins, since updating a row moves it.
    std::vector<DictationFiles> Selected() const;

    // Renames a dictation's record and row; false when the record does not take it.
    bool Rename(const DictationFiles& files, std::string_view name);

    bool HandleNotify(const NMHDR& header, LRESULT& result);

private:
    struct Entry {
        int32_t number;
        DictationFiles files;
    };

    int CurrentIndex() const;
    std::optional<DictationFiles> FilesAt(int index) const;
    int IndexOfNumber(int32_t number) const;
    const Entry* EntryAt(int index) const;
    const Entry* EntryOf(const LPath& record) const;
    void SelectOnly(int index);
    int Append(const DictationRow& row);
    void EvItemChanged(const NMLISTVIEW& change);
    void EvBeginLabelEdit(const NMLVDISPINFOA& edit);
    LRESULT EvEndLabelEdit(const NMLVDISPINFOA& edit);

    HWND m_list = nullptr;
    Owner* m_owner = nullptr;
    LFont m_font;
    std::vector<Entry> m_entries;
    int32_t m_renamedNumber = 0;
    int m_quiet = 0;  // rows are being changed by us: the selection's moves are not the user's
};
