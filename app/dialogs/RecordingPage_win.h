#pragma once

#include <functional>

#include "app/AppState.h"
#include "app/dialogs/SoundLists_win.h"
#include "app/transport/Listening_win.h"
#include "ui/LPropertySheet.h"

// The page "Recording": input, volume and voice activation, with a meter of the microphone by the values that
// the page shows. The meter has the microphone open only while the page is seen and the transport rests.
// Thread: the window thread.
class RecordingPage final : public LPropertyPage {
public:
    // listening is stopped by whoever records or plays; isBusy: the transport needs the sound card.
    RecordingPage(const AppState& state, LControlBinding& binding, Listening& listening,
                  std::function<bool()> isBusy);
    ~RecordingPage() override { m_listening.Stop(); }

private:
    // What the meter listens to.
    struct Choice {
        SoundInput input;
        int8_t volumeDb = 0;
        bool operator==(const Choice&) const = default;
    };

    void InitPage() override;
    void UpdateControls() override;
    void DestroyDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

    void FillRates(int32_t stored);
    int8_t ShownLevel(int control, int8_t otherwise) const;
    Choice Shown() const;
    void EvTimer();
    void ShowLevel(int8_t levelDb);

    const AppState& m_state;
    Listening& m_listening;
    std::function<bool()> m_isBusy;
    InputLineList m_lines;
    Choice m_choice;
    bool m_hasFailed = false;  // the device of this choice does not open
};
