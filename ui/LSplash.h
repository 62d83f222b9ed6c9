#pragma once

#include "ui/LDialog.h"

// The splash screen: shown centred without taking the focus, closed after two seconds or by a click. It
// blocks nothing. Thread: the window thread.
class LSplash final : public LModelessDialog {
public:
    void Show(HWND owner);

private:
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
};
