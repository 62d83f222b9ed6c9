#pragma once

#include "app/dialogs/SentWorkRows.h"
#include "ui/LAnchors.h"
#include "ui/LDialog.h"

class LListViewChange;

// Shows the sent dictations with their status, and what waits in the queue, and follows both while it is
// open: only what differs is changed, so that selection and view stay.
// Thread: the window thread.
class SentWorkDialog final : public LDialog {
public:
    // history: read already. Both must outlive the dialog. user: the number of the history's user.
    SentWorkDialog(SentHistory& history, const BGSend& queue, uint32_t user)
        : m_history(history), m_queue(queue), m_user(user) {}

private:
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void Refresh();
    void Show(std::vector<SentWorkRow> rows);
    void ChangeRows(const RowChange& change, const std::vector<SentWorkRow>& rows);
    void FillWidth();

    SentHistory& m_history;
    const BGSend& m_queue;
    uint32_t m_user;
    LAnchors m_anchors;
    SendQueueView m_view;
    std::vector<SentWorkRow> m_shown;  // mirrors the rows of the list
};
