#pragma once

#include "hardware/HotKeyList.h"
#include "ui/LPropertySheet.h"

// The page of hot keys: a list, and its buttons to add, edit and delete. Each change is stored at once, and
// the sheet can then no longer be cancelled, only closed.
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

    // Shows the stored list and selects a row, or the last one before it.
    void ShowList(int selected);
    int Selected() const;
    void Add();
    void Edit();
    void Delete();
    void Stored(bool isStored, int selected);

    HotKeyList m_stored;
    std::vector<HotKey> m_list;  // as shown
    int m_lastKey = 0;           // that was chosen last; it may be held still
};
