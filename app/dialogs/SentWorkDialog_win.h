#pragma once

#include "app/AppState.h"
#include "app/dialogs/SentWorkRows.h"
#include "store/CollectStatus.h"
#include "ui/LAnchors.h"
#include "ui/LDialog.h"

// Shows the sent dictations with their status, and what waits in the queue, and follows both while it is
// open: only what differs is changed, so that selection and view stay. When it opens it collects what the
// typists report.
// Thread: the window thread.
class SentWorkDialog final : public LDialog {
public:
    // history: of the state's user, read already. All must outlive the dialog, and queue the collecting too.
    SentWorkDialog(const AppState& state, SentHistory& history, const BGSend& queue, CollectStatus& collect)
        : m_state(state), m_history(history), m_queue(queue), m_collect(collect) {}

private:
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void Collect();
    void Refresh(bool isHistoryNew);
    void Show(std::vector<SentWorkRow> rows);
    void ChangeRows(const RowChange& change, const std::vector<SentWorkRow>& rows);
    void FillWidth();

    const AppState& m_state;
    SentHistory& m_history;
    const BGSend& m_queue;
    CollectStatus& m_collect;
    LAnchors m_anchors;
    SendQueueView m_view;
    bool m_hasCollected = false;
    std::vector<SentWorkRow> m_shown;  // mirrors the rows of the list
};
