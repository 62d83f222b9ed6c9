#pragma once

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <vector>

#include "app/transport/CurrentDictation.h"
#include "app/window/Contrast.h"
#include "app/window/DictationRow.h"
#include "app/window/ListColumns_win.h"
#include "app/window/RowOrder.h"
#include "base/LProcess.h"
#include "ui/LWin.h"

class LListViewChange;

// The list view with the current user's dictations. A row's item data is the dictation's number; commands act
// on the files of the row's record file, also when the number inside the record differs. Rows are found by
// number or record without a search (RowOrder), so a command on many rows takes time in proportion to their
// number. The view scrolls only to follow the current dictation.
// Thread: the window thread.
class DictationList final : public DictationSelection {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // The rows have changed, and perhaps the current dictation with them.
        virtual void FileChanged() = 0;
        // Selection or focus are changing; their final state is known only after the list has finished its
        // message.
        virtual void SelectionMoved() = 0;
        // A row was double-clicked.
        virtual void PlayFromStart() = 0;
        // Called before the name of a row is edited, and after its editor has closed. isLost: the new name
        // could not be stored.
        virtual void BeforeRename() = 0;
        virtual void AfterRename(bool isLost) = 0;
    };

    // current: the dictation that the view follows and that BeginRename edits.
    explicit DictationList(const CurrentDictation& current) : m_current(current) {}
    void Attach(HWND list, Owner& owner);
    // Deletes the font; called when the window is destroyed.
    void ReleaseFont() { m_font.Reset(); }
    // Gives the last column the room that the others leave; called when the list has changed its size.
    void FitColumns() { m_columns.Fit(); }
    // The colour scheme has changed.
    void EvColoursChanged();

    // Empties the list and forgets everything about its rows; the owner is not told.
    void Clear();
    // Fills the list anew with every record of the folder and selects and focuses the last row. Stopped
    // leaves the rows that were added until then.
    ProcessResult SetupFilesList(const LPath& folder, ProcessContext& context);
    // Adds a row at the end, unless its number is listed already.
    void AddFile(const LPath& record);
    // Loads a row anew and moves it to the end, with its selection; a last row changes in place. While its
    // record cannot be read the row stays as it is.
    void UpdateFile(const LPath& record);
    // The same by a posted WM_ROWCHANGED, for callers in the middle of a click: the row must not move under
    // it.
    void UpdateLater(const LPath& record);
    // Answers WM_ROWCHANGED. Does nothing while a name is edited; the end of the editing posts the message
    // again.
    void UpdateNoted();
    // The same for several rows, in the given order. listing: of their folder, as it is now.
    void UpdateFiles(const std::vector<DictationFiles>& dictations, const FolderListing& listing);
    // Loads the rows again whose records could not be read before.
    void ReloadUnreadable();
    // The dictations whose records were found absent when their rows were to be loaded again. Such a row
    // stays as it was until it is removed. Each is returned once; none while a name is edited.
    std::vector<DictationFiles> TakeAbsent();
    // Removes rows. When no row remains selected, the one that takes the place of the last removed row is.
    void RemoveFiles(const std::vector<DictationFiles>& dictations);
    // Makes this row the only selected one.
    void SelectFile(const LPath& record);
    // Selects these rows alone, and focuses the first; those that are not listed are passed over.
    void SelectFiles(const std::vector<LPath>& records);
    void SelectAll();
    // Marks the row of a dictation that is being recorded; nothing: none is.
    void ShowRecorded(const std::optional<DictationFiles>& files);
    // The length of the dictation that is being recorded.
    void ShowLength(int32_t lengthMs);
    // Scrolls to the current dictation; called when the list has changed its size.
    void ShowCurrent();
    void BeginRename();
    // While this is true no row may be moved or removed.
    bool IsRenaming() const { return ListView_GetEditControl(m_list) != nullptr; }

    // Whether a place in the list, in its pixels, lies on no row.
    bool IsBesideRows(POINT place) const;
    // The part of the list at a place that has a tip, and the tip: a name that is cut, or, beside the rows,
    // nothing.
    RECT PartAt(POINT place, std::string& tip) const;
    // A place of the screen for the menu of the current row.
    POINT MenuPlace() const;
    // The index of the priority that all selected dictations have; -1 when they differ.
    int CommonPriority() const;

    int Count() const { return ListView_GetItemCount(m_list); }
    int SelectedCount() const { return static_cast<int>(ListView_GetSelectedCount(m_list)); }
    std::optional<DictationFiles> Focused() const override;
    std::optional<DictationFiles> First() const override;
    bool IsSelected(const DictationFiles& files) const override;
    // The name in the row of a record; empty when the record has none.
    std::string NameOf(const LPath& record) const { return TextAt(m_rows.IndexOf(record), 0); }
    // The rows whose records are not in a listing of their folder; none when the listing is not whole.
    std::vector<DictationFiles> NotIn(const FolderListing& listing) const;
    bool HoldsNumber(int32_t number) const { return m_rows.IndexOf(number) >= 0; }
    // The number of a record's row; nothing when it is not listed.
    std::optional<int32_t> NumberOf(const LPath& record) const;
    // The selected dictations. To be taken before a command changes rows, since a changed row moves.
    std::vector<DictationFiles> Selected() const;

    // Renames a dictation in its record and its row; a blank or unchanged name does nothing. False when the
    // record cannot be written.
    bool Rename(const DictationFiles& files, std::string_view name);

    // Handles a WM_NOTIFY message of the list; false when it is left to the default.
    bool HandleNotify(const NMHDR& header, LRESULT& result);

private:
    ProcessResult AddFiles(const FolderListing& listing, ProcessContext& context);
    int AddRow(const DictationRow& row);
    void Update(std::vector<DictationRow> rows);
    bool AreLast(const std::vector<DictationRow>& rows) const;
    void ChangeTexts(int index, const DictationRow& row);
    void MoveToEnd(const DictationRow& row, LListViewChange& change);
    void SetText(int index, int column, const std::string& text);
    void SetSign(int index, const RowSign& sign);
    void MakeSigns();
    LRESULT EvCustomDraw(NMLVCUSTOMDRAW& draw) const;
    void DrawSign(HDC dc, int index) const;
    std::string TextAt(int index, int column) const;
    int CurrentIndex() const;
    std::optional<DictationFiles> FilesAt(int index) const;
    bool IsInView(int index) const;
    void SelectOnly(int index);
    void UpdateLater(int32_t number);
    void EvItemChanged(const NMLISTVIEW& change);
    void EvBeginLabelEdit(const NMLVDISPINFOA& edit);
    LRESULT EvEndLabelEdit(const NMLVDISPINFOA& edit);

    const CurrentDictation& m_current;
    HWND m_list = nullptr;
    Owner* m_owner = nullptr;
    LFont m_font;
    RowColours m_unfocused = {};  // of selected rows while the list does not have the focus
    ListColumns m_columns;
    LPath m_recorded;  // record of the dictation that is being recorded
    RowOrder m_rows;   // mirrors the rows of the list view, in the same order
    std::optional<int32_t> m_renamedNumber;
    std::vector<int32_t> m_toUpdate;  // numbers of the rows that wait for UpdateNoted
    std::vector<LPath> m_unreadable;  // records of rows that are to be loaded again
    std::vector<DictationFiles> m_absent;
    int m_quiet = 0;  // above 0: our own code changes rows, and SelectionMoved is not reported
};

// Fills a list as a long process.
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
