#pragma once

#include "hardware/HotKeyList.h"
#include "ui/LPropertySheet.h"

// The page of hot keys: a list, and its buttons to add, edit and delete. Each change is stored at once, and
// the sheet can then no longer be cancelled, only closed. Each row says what keeps its key from working.
// Errors: a list that cannot be read or changed is told to the user.
// Thread: the window thread.
class LKeysPage final : public LPropertyPage {
public:
    explicit LKeysPage(const LPath& settingsFile);

private:
    void InitPage() override;
    void UpdateControls() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    bool EvCommand(int control);
    bool EvNotify(const NMHDR& header);

    // Shows the stored list and selects the wanted hot key, else the row, or the last one before it.
    void ShowList(int selected, const HotKey* wanted);
    void AddRow(int row);
    int Selected() const;
    void Add();
    void Edit();
    void Delete();
    // Asks for a hot key in place of the one that stands in the row, or for a further one.
    std::optional<HotKey> Ask(const HotKey& before, std::optional<int> row);
    void Stored(HotKeyList::Change change, int selected, const HotKey* hotKey);

    HotKeyList m_stored;
    std::vector<HotKey> m_list;  // as shown
    int m_lastKey = 0;           // that was chosen last; it may be held still
};
