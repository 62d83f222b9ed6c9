#pragma once

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <vector>

#include "app/transport/CurrentDictation.h"
#include "app/window/DictationRow.h"
#include "app/window/RowOrder.h"
#include "base/LProcess.h"
#include "ui/LWin.h"

class ListViewChange;

// The rows of the current user's dictations. Each row's item data is the dictation's number; the row acts on
// the files of its record's file name, also when the number inside the record says otherwise. No operation
// searches the rows, so a command on many costs as often what it costs on one. What is being looked at is
// scrolled away only to show where the current dictation has gone. Thread: the window thread.
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
        // Before the name of a row is edited, and when the editor closes: the number of the dictation that was
        // given a new name, if there is one, and whether its record took it.
        virtual void BeforeRename() = 0;
        virtual void AfterRename(std::optional<int32_t> renamed, bool isStored) = 0;
    };

    // current: what the view follows, and what is renamed.
    explicit DictationList(const CurrentDictation& current) : m_current(current) {}
    void Attach(HWND list, Owner& owner);
    // The font goes with the window.
    void ReleaseFont() { m_font.Reset(); }

    // Empties the list and adds every record of the folder; the last row is selected and focused. Stopped, it
    // holds those that were added until then.
    ProcessResult SetupFilesList(const LPath& folder, ProcessContext& context);
    // A number that is listed already is not added again.
    void AddFile(const LPath& record);
    // The row moves to the end and keeps its selection; one that is last changes in place. While the record cannot be
    // read the row stays as it is.
    void UpdateFile(const LPath& record);
    void UpdateNumber(int32_t number);
    // The same for several, in the order given; listing: of their folder, as it is now.
    void UpdateFiles(const std::vector<DictationFiles>& dictations, const FolderListing& listing);
    // Tries once more to read the records that another program kept from being read.
    void ReloadUnreadable();
    // When no row remains selected, the one that takes the place of the last is.
    void RemoveFiles(const std::vector<DictationFiles>& dictations);
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
    std::string NameOf(const LPath& record) const { return TextAt(m_rows.IndexOf(record), 0); }
    bool HoldsNumber(int32_t number) const { return m_rows.IndexOf(number) >= 0; }
    // The number under which a record is listed.
    std::optional<int32_t> NumberOf(const LPath& record) const;
    // Taken before a command on several rows begins, since updating a row moves it.
    std::vector<DictationFiles> Selected() const;

    // Renames a dictation's record and row; a blank or unchanged name touches nothing. False when the record
    // does not take it.
    bool Rename(const DictationFiles& files, std::string_view name);

    bool HandleNotify(const NMHDR& header, LRESULT& result);

private:
    ProcessResult AddFiles(const FolderListing& listing, ProcessContext& context);
    int AddRow(const DictationRow& row);
    void Update(std::vector<DictationRow> rows);
    bool AreLast(const std::vector<DictationRow>& rows) const;
    void ChangeTexts(int index, const DictationRow& row);
    void MoveToEnd(const DictationRow& row, ListViewChange& change);
    void SetText(int index, int column, const std::string& text);
    std::string TextAt(int index, int column) const;
    int CurrentIndex() const;
    std::optional<DictationFiles> FilesAt(int index) const;
    bool IsInView(int index) const;
    void SelectOnly(int index);
    void EvItemChanged(const NMLISTVIEW& change);
    void EvBeginLabelEdit(const NMLVDISPINFOA& edit);
    LRESULT EvEndLabelEdit(const NMLVDISPINFOA& edit);

    const CurrentDictation& m_current;
    HWND m_list = nullptr;
    Owner* m_owner = nullptr;
    LFont m_font;
    RowOrder m_rows;  // the same rows in the same order as the list view's
    std::optional<int32_t> m_renamedNumber;
    std::vector<LPath> m_unreadable;  // records of rows to be loaded again
    int m_quiet = 0;  // rows are being changed by us: the selection's moves are not the user's
};

// Fills a list from a folder, under a progress dialog when it takes longer.
class LoadDictations final : public LProcess {
public:
    LoadDictations(DictationList& list, const LPath& folder) : m_list(list), m_folder(folder) {}
    ProcessResult Process(ProcessContext& context) override {
        return m_list.SetupFilesList(m_folder, context);
    }

private:
    DictationList& m_list;
    LPath m_folder;
};
