#pragma once

#include "ui/LDialog.h"

// The splash screen: shown without taking the focus, gone after two seconds or at a click, blocking nothing.
class LSplash final : public LModelessDialog {
public:
    void Show(HWND owner);

private:
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
};
