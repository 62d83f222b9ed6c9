#pragma once

#include "app/dialogs/SoundLists_win.h"
#include "base/LPath.h"
#include "hardware/PedalReader_win.h"
#include "ui/LPropertySheet.h"

// The page of pedals and sound devices. While it is seen it reads the chosen port, whether accepted or not,
// and shows what is pressed.
// Thread: the window thread. The main window's own reading of the pedals has been stopped.
class HardwarePage final : public LPropertyPage {
public:
    HardwarePage(const LPath& settingsFile, LControlBinding& binding);

private:
    void InitPage() override;
    void UpdateControls() override;
    void DestroyDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

    void FillCommands(int list);
    void ReadChosenPort();
    void ShowTest();
    void StartMixer();

    const LPath& m_settingsFile;
    InputLineList m_lines;
    PedalReader m_reader;
    int32_t m_port = kNoPort;  // that is read
};
