#pragma once

#include <span>

#include "ui/LDialog.h"

// Pages of help text with Back and Next, shown beside the main window after an installation. The pages must
// outlive the object. Thread: the window thread.
class LIntroduction final : public LModelessDialog {
public:
    struct Page {
        const char* title;
        const char* text;
    };

    explicit LIntroduction(std::span<const Page> pages) : m_pages(pages) {}
    void Show(HWND owner);
    bool PreTranslateMessage(MSG& message) override;

private:
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void ShowPage();

    std::span<const Page> m_pages;
    size_t m_page = 0;
};
