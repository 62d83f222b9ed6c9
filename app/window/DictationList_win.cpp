#include "app/window/DictationList_win.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/window/DateText_win.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/DictationRecord.h"
#include "ui/LListViewChange.h"

// The list view holds the texts, RowOrder the dictations; both always have the same rows in the same order.
// Searching the list view was rejected: it made commands on many rows quadratic.
// Filling asks one FolderListing, not the file system for each file: with 10,000 dictations a start took 60 s
// otherwise, and takes 3 s now.
// A changed row moves to the end on purpose. Rows must not move inside a notification of the list view;
// MainDialog therefore collects changes and applies them by a posted message.

namespace {

constexpr int kFontHeight = 16;  // pixels

// Progress of a fill is reported from 300 ms on, when the progress dialog appears; a shorter fill is one
// step, without messages in between.
constexpr uint32_t kTellAfterMs = 300;
constexpr uint32_t kTellPeriodMs = 100;

constexpr int kLabelMargins = 8;  // pixels beside the text of a name

// The index of a row's picture.
int PictureOf(const RowSign& sign) {
    return static_cast<int>(sign.holds) * 4 + (sign.hasNotes ? 1 : 0) + (sign.isHigh ? 2 : 0);
}

// The texts of a row, in the order of the columns.
std::array<std::string, ListColumns::Count> TextsOf(const DictationRow& row) {
    return {row.name, FormatDate(row.date), FormatTimeOfDay(row.date), row.duration, row.priority, row.notes};
}

// Keeps a counter raised for its lifetime.
class Quiet {
public:
    explicit Quiet(int& count) : m_count(count) { ++m_count; }
    ~Quiet() { --m_count; }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    int& m_count;
};

}  // namespace

void DictationList::Attach(HWND list, Owner& owner) {
    m_list = list;
    m_owner = &owner;
    ListView_SetExtendedListViewStyle(m_list, LVS_EX_FULLROWSELECT);
    EvColoursChanged();
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(m_list, WM_GETFONT, 0, 0)), sizeof font, &font);
    font.lfHeight = LScaled(kFontHeight);
    font.lfWidth = 0;
    font.lfWeight = FW_NORMAL;
    m_font.Reset(CreateFontIndirectA(&font));
    SendMessageA(m_list, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.Get()), FALSE);
    m_columns.Attach(m_list);
}

// One picture for each RowSign, put together from icons on the window's colour, which is then transparent:
// overlays of the platform do not lie smoothly on each other.
void DictationList::MakeSigns() {
    constexpr int kHolds[] = {IDI_ROW_NEW, IDI_ROW_RECORDED, IDI_ROW_RECORDING};
    constexpr int kExtras[] = {0, IDI_ROW_NOTES, IDI_ROW_HIGH, IDI_ROW_NOTESHIGH};
    const int side = GetSystemMetrics(SM_CXSMICON);
    const HIMAGELIST images = ImageList_Create(side, side, ILC_COLOR24 | ILC_MASK, 0, 1);
    const HDC screen = GetDC(nullptr);
    const HDC dc = CreateCompatibleDC(screen);
    for (const int holds : kHolds) {
        for (const int extra : kExtras) {
            LBitmap picture(CreateCompatibleBitmap(screen, side, side));
            const HGDIOBJ old = SelectObject(dc, picture.Get());
            const RECT box = {0, 0, side, side};
            FillRect(dc, &box, GetSysColorBrush(COLOR_WINDOW));
            for (const int resource : {holds, extra}) {
                if (resource == 0) continue;
                const LIcon icon(static_cast<HICON>(
                    LoadImageA(LInstance(), MAKEINTRESOURCEA(resource), IMAGE_ICON, side, side, 0)));
                DrawIconEx(dc, 0, 0, icon.Get(), side, side, 0, nullptr, DI_NORMAL);
            }
            SelectObject(dc, old);
            ImageList_AddMasked(images, picture.Get(), GetSysColor(COLOR_WINDOW));
        }
    }
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
    // The list deletes its images with itself.
    if (const HIMAGELIST before = ListView_SetImageList(m_list, images, LVSIL_SMALL))
        ImageList_Destroy(before);
}

void DictationList::EvColoursChanged() {
    m_unfocused = UnfocusedSelection({GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_WINDOWTEXT),
                                      GetSysColor(COLOR_HIGHLIGHT), GetSysColor(COLOR_HIGHLIGHTTEXT)});
    ListView_SetBkColor(m_list, GetSysColor(COLOR_WINDOW));
    ListView_SetTextBkColor(m_list, GetSysColor(COLOR_WINDOW));
    ListView_SetTextColor(m_list, GetSysColor(COLOR_WINDOWTEXT));
    MakeSigns();
}

// Pending changes are known by number, which the next user's dictations have too.
void DictationList::Clear() {
    const Quiet quiet(m_quiet);
    ListView_DeleteAllItems(m_list);
    m_rows.Clear();
    m_renamedNumber.reset();
    m_toUpdate.clear();
    m_unreadable.clear();
    m_absent.clear();
}

ProcessResult DictationList::SetupFilesList(const LPath& folder, ProcessContext& context) {
    ProcessResult result;
    {
        const Quiet quiet(m_quiet);
        SendMessageA(m_list, WM_SETREDRAW, FALSE, 0);
        Clear();
        result = AddFiles(FolderListing(folder), context);
        SendMessageA(m_list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(m_list, nullptr, TRUE);
        SelectOnly(Count() - 1);
    }
    m_owner->FileChanged();
    return result;
}

ProcessResult DictationList::AddFiles(const FolderListing& listing, ProcessContext& context) {
    const std::vector<LPath> records = listing.Records();
    ListView_SetItemCount(m_list, static_cast<int>(records.size()));
    uint32_t toldTick = LTickMs();
    uint32_t waitMs = kTellAfterMs;
    for (const LPath& record : records) {
        AddRow(LoadDictationRow(record, listing));
        if (LTickMs() - toldTick < waitMs) continue;
        if (waitMs == kTellAfterMs) context.SetStatus("Please wait...");
        context.SetProgress(static_cast<double>(Count()) / static_cast<double>(records.size()));
        if (context.CancelRequested()) return ProcessResult::Stopped;
        toldTick = LTickMs();
        waitMs = kTellPeriodMs;
    }
    return ProcessResult::Done;
}

void DictationList::AddFile(const LPath& record) {
    const Quiet quiet(m_quiet);
    if (!record.Empty()) AddRow(LoadDictationRow(record));
}

int DictationList::AddRow(const DictationRow& row) {
    if (const int index = m_rows.IndexOf(row.number); index >= 0) return index;
    LVITEMA item = {};
    item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
    item.iItem = Count();
    item.iImage = PictureOf(SignOf(row, row.files.record == m_recorded));
    item.pszText = const_cast<char*>(row.name.c_str());
    item.lParam = row.number;
    const int index =
        static_cast<int>(SendMessageA(m_list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
    if (index < 0) {
        LTrace("DictationList::AddRow InsertItem FAILED");
        return index;
    }
    m_rows.Append(row.number, row.files.record);
    if (row.isUnreadable) m_unreadable.push_back(row.files.record);
    const auto texts = TextsOf(row);
    for (int column = 1; column < ListColumns::Count; ++column)
        SetText(index, column, texts[static_cast<size_t>(column)]);
    return index;
}

void DictationList::SetSign(int index, const RowSign& sign) {
    LVITEMA item = {};
    item.mask = LVIF_IMAGE;
    item.iItem = index;
    item.iImage = PictureOf(sign);
    SendMessageA(m_list, LVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&item));
}

void DictationList::SetText(int index, int column, const std::string& text) {
    LVITEMA item = {};
    item.iSubItem = column;
    item.pszText = const_cast<char*>(text.c_str());
    SendMessageA(m_list, LVM_SETITEMTEXTA, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

std::string DictationList::TextAt(int index, int column) const {
    char text[kPathSize] = {};
    if (index >= 0) ListView_GetItemText(m_list, index, column, text, sizeof text);
    return text;
}

void DictationList::UpdateFile(const LPath& record) {
    Update({LoadDictationRow(record)});
}

void DictationList::UpdateLater(const LPath& record) {
    if (const std::optional<int32_t> number = NumberOf(record)) UpdateLater(*number);
}

void DictationList::UpdateLater(int32_t number) {
    m_toUpdate.push_back(number);
    PostMessageA(GetParent(m_list), WM_ROWCHANGED, 0, 0);
}

void DictationList::UpdateNoted() {
    if (IsRenaming()) return;
    for (const int32_t number : std::exchange(m_toUpdate, {}))
        if (const int index = m_rows.IndexOf(number); index >= 0) UpdateFile(m_rows.RecordAt(index));
}

void DictationList::UpdateFiles(const std::vector<DictationFiles>& dictations, const FolderListing& listing) {
    std::vector<DictationRow> rows;
    rows.reserve(dictations.size());
    for (const DictationFiles& files : dictations) rows.push_back(LoadDictationRow(files.record, listing));
    Update(std::move(rows));
}

void DictationList::ReloadUnreadable() {
    std::vector<DictationRow> rows;
    for (const LPath& record : std::exchange(m_unreadable, {})) {
        if (m_rows.IndexOf(record) >= 0) rows.push_back(LoadDictationRow(record));
    }
    if (!rows.empty()) Update(std::move(rows));
}

std::vector<DictationFiles> DictationList::TakeAbsent() {
    return IsRenaming() ? std::vector<DictationFiles>() : std::exchange(m_absent, {});
}

void DictationList::Update(std::vector<DictationRow> rows) {
    const Quiet quiet(m_quiet);
    // The texts shown stay true until the record can be read.
    std::erase_if(rows, [this](const DictationRow& row) {
        const bool isKept = row.isUnreadable && m_rows.IndexOf(row.files.record) >= 0;
        if (isKept) m_unreadable.push_back(row.files.record);
        if (row.isAbsent) m_absent.push_back(row.files);
        return isKept || row.isAbsent;
    });
    if (AreLast(rows)) {
        for (const DictationRow& row : rows) ChangeTexts(m_rows.IndexOf(row.number), row);
        return;
    }
    const bool followsCurrent = IsInView(CurrentIndex());
    {
        LListViewChange change(m_list);
        for (const DictationRow& row : rows) MoveToEnd(row, change);
    }
    if (followsCurrent) ShowCurrent();
}

// Whether the rows are the last ones already, in this order: then moving each to the end would change
// nothing.
bool DictationList::AreLast(const std::vector<DictationRow>& rows) const {
    int index = Count() - static_cast<int>(rows.size());
    return index >= 0 && std::all_of(rows.begin(), rows.end(), [&](const DictationRow& row) {
               return m_rows.IndexOf(row.number) == index && m_rows.IndexOf(row.files.record) == index++;
           });
}

void DictationList::ChangeTexts(int index, const DictationRow& row) {
    const auto texts = TextsOf(row);
    for (int column = 0; column < ListColumns::Count; ++column)
        if (TextAt(index, column) != texts[static_cast<size_t>(column)])
            SetText(index, column, texts[static_cast<size_t>(column)]);
    SetSign(index, SignOf(row, row.files.record == m_recorded));
}

// The row keeps its selection and focus.
void DictationList::MoveToEnd(const DictationRow& row, LListViewChange& change) {
    UINT state = 0;
    if (const int old = m_rows.IndexOf(row.files.record); old >= 0) {
        state = ListView_GetItemState(m_list, old, LVIS_SELECTED | LVIS_FOCUSED);
        change.Delete(old);
        m_rows.Remove(old);
    }
    const int index = AddRow(row);
    if (state != 0) ListView_SetItemState(m_list, index, state, LVIS_SELECTED | LVIS_FOCUSED);
}

void DictationList::RemoveFiles(const std::vector<DictationFiles>& dictations) {
    {
        const Quiet quiet(m_quiet);
        int place = -1;
        {
            LListViewChange change(m_list);
            for (const DictationFiles& files : dictations) {
                const int index = m_rows.IndexOf(files.record);
                if (index < 0) continue;
                change.Delete(place = index);
                m_rows.Remove(index);
            }
        }
        if (place < 0) return;
        if (SelectedCount() == 0) SelectOnly(std::min(place, Count() - 1));
    }
    m_owner->FileChanged();
}

void DictationList::SelectFile(const LPath& record) {
    const int index = m_rows.IndexOf(record);
    if (index < 0) return;
    {
        const Quiet quiet(m_quiet);
        SelectOnly(index);
    }
    m_owner->FileChanged();
}

void DictationList::SelectFiles(const std::vector<LPath>& records) {
    {
        const Quiet quiet(m_quiet);
        SelectOnly(-1);
        for (const LPath& record : records) {
            const int index = m_rows.IndexOf(record);
            if (index < 0) continue;
            if (SelectedCount() == 0) SelectOnly(index);
            ListView_SetItemState(m_list, index, LVIS_SELECTED, LVIS_SELECTED);
        }
    }
    m_owner->FileChanged();
}

void DictationList::SelectOnly(int index) {
    ListView_SetItemState(m_list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    if (index < 0) return;
    ListView_SetItemState(m_list, index, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(m_list, index, FALSE);
}

void DictationList::SelectAll() {
    ListView_SetItemState(m_list, -1, LVIS_SELECTED, LVIS_SELECTED);
}

// The end of a recording has its row loaded again, and with it the sign.
void DictationList::ShowRecorded(const std::optional<DictationFiles>& files) {
    m_recorded = files ? files->record : LPath();
    const int index = files ? m_rows.IndexOf(m_recorded) : -1;
    if (index >= 0)
        SetSign(index, {RowSign::Holds::RecordingNow, !TextAt(index, ListColumns::Notes).empty(),
                        PriorityIndex(TextAt(index, ListColumns::Priority)) == 0});
}

void DictationList::ShowLength(int32_t lengthMs) {
    const int index = m_recorded.Empty() ? -1 : m_rows.IndexOf(m_recorded);
    const std::string text = FormatDuration(lengthMs);
    if (index >= 0 && TextAt(index, ListColumns::Duration) != text)
        SetText(index, ListColumns::Duration, text);
}

bool DictationList::IsBesideRows(POINT place) const {
    LVHITTESTINFO hit = {};
    hit.pt = place;
    return ListView_HitTest(m_list, &hit) < 0;
}

RECT DictationList::PartAt(POINT place, std::string& tip) const {
    LVHITTESTINFO hit = {};
    hit.pt = place;
    const int index = ListView_HitTest(m_list, &hit);
    RECT part = {};
    if (index < 0 || !ListView_GetItemRect(m_list, index, &part, LVIR_LABEL)) return {};
    part.right = std::min<LONG>(part.right, ListView_GetColumnWidth(m_list, 0));
    if (!PtInRect(&part, place)) return {};
    const std::string name = TextAt(index, 0);
    if (ListView_GetStringWidth(m_list, name.c_str()) + LScaled(kLabelMargins) > part.right - part.left)
        tip = name;
    return part;
}

POINT DictationList::MenuPlace() const {
    RECT row = {};
    const int index = CurrentIndex();
    const bool isSeen =
        index >= 0 && IsInView(index) && ListView_GetItemRect(m_list, index, &row, LVIR_LABEL);
    POINT at = {isSeen ? row.left + 16 : 16, isSeen ? row.bottom : 32};
    ClientToScreen(m_list, &at);
    return at;
}

int DictationList::CommonPriority() const {
    int common = -1;
    for (int i = -1; (i = ListView_GetNextItem(m_list, i, LVNI_SELECTED)) >= 0;) {
        const int priority = PriorityIndex(TextAt(i, ListColumns::Priority));
        if (priority < 0 || (common >= 0 && priority != common)) return -1;
        common = priority;
    }
    return common;
}

void DictationList::ShowCurrent() {
    if (const int index = CurrentIndex(); index >= 0) ListView_EnsureVisible(m_list, index, FALSE);
}

void DictationList::BeginRename() {
    const int index = CurrentIndex();
    if (index < 0) return;
    SetFocus(m_list);
    ListView_EditLabel(m_list, index);
}

bool DictationList::Rename(const DictationFiles& files, std::string_view name) {
    const std::optional<std::string> changed = ChangedName(NameOf(files.record), name);
    if (!changed) return true;
    const bool isStored = StoreName(files.record, *changed);
    UpdateFile(files.record);
    return isStored;
}

int DictationList::CurrentIndex() const {
    return m_current ? m_rows.IndexOf(m_current.Files()->record) : -1;
}

bool DictationList::IsInView(int index) const {
    const int top = ListView_GetTopIndex(m_list);
    return index >= top && index < top + ListView_GetCountPerPage(m_list);
}

std::optional<DictationFiles> DictationList::FilesAt(int index) const {
    if (!m_rows.Holds(index)) return std::nullopt;
    return DictationFiles::OfPath(m_rows.RecordAt(index));
}

std::optional<DictationFiles> DictationList::Focused() const {
    return FilesAt(ListView_GetNextItem(m_list, -1, LVNI_FOCUSED | LVNI_SELECTED));
}

std::optional<DictationFiles> DictationList::First() const {
    return FilesAt(ListView_GetNextItem(m_list, -1, LVNI_SELECTED));
}

bool DictationList::IsSelected(const DictationFiles& files) const {
    const int index = m_rows.IndexOf(files.record);
    return index >= 0 && ListView_GetItemState(m_list, index, LVIS_SELECTED) != 0;
}

std::optional<int32_t> DictationList::NumberOf(const LPath& record) const {
    const int index = m_rows.IndexOf(record);
    if (index < 0) return std::nullopt;
    return m_rows.NumberAt(index);
}

std::vector<DictationFiles> DictationList::Selected() const {
    std::vector<DictationFiles> selected;
    for (int i = -1; (i = ListView_GetNextItem(m_list, i, LVNI_SELECTED)) >= 0;)
        if (const auto files = FilesAt(i)) selected.push_back(*files);
    return selected;
}

std::vector<DictationFiles> DictationList::NotIn(const FolderListing& listing) const {
    std::vector<DictationFiles> missing;
    for (int i = 0; listing.IsWhole() && i < m_rows.Count(); ++i)
        if (const LPath record = m_rows.RecordAt(i); !listing.SizeOf(record.View()))
            missing.push_back(DictationFiles::OfPath(record));
    return missing;
}

bool DictationList::HandleNotify(const NMHDR& header, LRESULT& result) {
    result = 0;
    switch (header.code) {
        case LVN_ITEMCHANGED:
            EvItemChanged(reinterpret_cast<const NMLISTVIEW&>(header));
            return true;
        case LVN_BEGINLABELEDITA:
            EvBeginLabelEdit(reinterpret_cast<const NMLVDISPINFOA&>(header));
            return true;
        case LVN_ENDLABELEDITA:
            result = EvEndLabelEdit(reinterpret_cast<const NMLVDISPINFOA&>(header));
            return true;
        case NM_CUSTOMDRAW:
            result = EvCustomDraw(*reinterpret_cast<NMLVCUSTOMDRAW*>(const_cast<NMHDR*>(&header)));
            return true;
        case HDN_ITEMCHANGEDA:
        case HDN_ITEMCHANGEDW:
            m_columns.Fit();
            return true;
        case NM_DBLCLK:
            if (reinterpret_cast<const NMLISTVIEW&>(header).iItem >= 0) m_owner->PlayFromStart();
            return true;
        default:
            return false;
    }
}

// Without the focus the platform shows selected rows in the colour of buttons, which many schemes have next
// to the window's. Told that a row is not selected, it takes the colours it is given. It also mixes the
// picture of a selected row with the colour of the selection, and red would no longer be red; it is drawn
// again.
LRESULT DictationList::EvCustomDraw(NMLVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    const int index = static_cast<int>(draw.nmcd.dwItemSpec);
    const bool isSelected = (ListView_GetItemState(m_list, index, LVIS_SELECTED) & LVIS_SELECTED) != 0;
    if (!isSelected) return CDRF_DODEFAULT;
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPOSTPAINT) DrawSign(draw.nmcd.hdc, index);
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    if (GetFocus() == m_list) return CDRF_NOTIFYPOSTPAINT;
    draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
    draw.clrTextBk = m_unfocused.background;
    draw.clrText = m_unfocused.text;
    return CDRF_NEWFONT | CDRF_NOTIFYPOSTPAINT;
}

void DictationList::DrawSign(HDC dc, int index) const {
    RECT box = {};
    if (!ListView_GetItemRect(m_list, index, &box, LVIR_ICON)) return;
    LVITEMA item = {};
    item.mask = LVIF_IMAGE;
    item.iItem = index;
    SendMessageA(m_list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    const int side = GetSystemMetrics(SM_CXSMICON);
    const int top = static_cast<int>(box.top) + (static_cast<int>(box.bottom - box.top) - side) / 2;
    FillRect(dc, &box, GetSysColorBrush(COLOR_WINDOW));
    ImageList_Draw(ListView_GetImageList(m_list, LVSIL_SMALL), item.iImage, dc, static_cast<int>(box.left),
                   top, ILD_TRANSPARENT);
}

void DictationList::EvItemChanged(const NMLISTVIEW& change) {
    const bool moved = ((change.uNewState ^ change.uOldState) & (LVIS_SELECTED | LVIS_FOCUSED)) != 0;
    if (m_quiet == 0 && (change.uChanged & LVIF_STATE) != 0 && moved) m_owner->SelectionMoved();
}

void DictationList::EvBeginLabelEdit(const NMLVDISPINFOA& edit) {
    m_renamedNumber.reset();
    if (m_rows.Holds(edit.item.iItem)) m_renamedNumber = m_rows.NumberAt(edit.item.iItem);
    m_owner->BeforeRename();
}

LRESULT DictationList::EvEndLabelEdit(const NMLVDISPINFOA& edit) {
    const int index = m_renamedNumber ? m_rows.IndexOf(*m_renamedNumber) : -1;
    const char* typed = index >= 0 ? edit.item.pszText : nullptr;  // null: cancelled
    const auto name = typed != nullptr ? ChangedName(TextAt(index, 0), typed) : std::nullopt;
    const bool isStored = name && StoreName(m_rows.RecordAt(index), *name);
    if (name) m_toUpdate.push_back(*m_renamedNumber);
    PostMessageA(GetParent(m_list), WM_ROWCHANGED, 0, 0);  // also for the rows that waited for this end
    m_owner->AfterRename(name && !isStored);
    return FALSE;  // refused: the list view would write into any row that is under the editor by now
}
