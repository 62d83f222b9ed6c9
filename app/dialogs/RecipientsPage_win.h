#pragma once

#include "app/AppState.h"
#include "res/Ids.h"
#include "send/BGSend.h"
#include "store/SendToSettings.h"
#include "ui/LPropertySheet.h"

// The page of the user's recipients, in the order of their numbers, by description. Each change is stored at
// once, and the sheet can then no longer be cancelled, only closed.
// Thread: the window thread.
class RecipientsPage final : public LPropertyPage {
public:
    // queue: what waits there follows its recipient when another one is deleted.
    RecipientsPage(const AppState& state, BGSend& queue);

private:
    void InitPage() override { ShowList(DefaultRecipientIndex(m_state.user.userFile).value_or(0)); }
    void UpdateControls() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    bool EvCommand(int control, int notification);
    // Selects the recipient of an index, or the last one before it.
    void ShowList(int selected);
    int Selected() const;
    void CmAdd();
    void CmEdit();
    void CmDelete();
    void CmMakeDefault();
    bool IsStill(int index);
    std::string ChangeOf(int index);
    bool StoreDefault(int index);
    std::string DefaultAfter(int index) const;
    bool IsSureToDelete(int index);
    void Changed(int selected);
    // Tells the user, with the keyboard in the list.
    void Tell(std::string_view text) { Refuse(IDC_RECIPIENTS_LIST, text); }
    LPath RecordOf(int index) const { return RecipientPath(m_state.data.folder, m_state.user.number, index); }

    const AppState& m_state;
    BGSend& m_queue;
    std::vector<ShownRecipient> m_shown;  // mirrors the rows of the list
};
