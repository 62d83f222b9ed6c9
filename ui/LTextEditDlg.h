#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/LProfile.h"
#include "ui/LDialog.h"

// Asks the user for one line of text. Units: lengths in bytes. Thread: the window thread.
class LTextEditDlg final : public LDialog {
public:
    static constexpr size_t kMostBytes = LProfile::kMaxText;

    // Shows the text selected, so that typing replaces it. Returns at most 259 bytes, the longest value of a
    // settings file; nothing when the user cancels.
    static std::optional<std::string> Ask(HWND owner, std::string_view title, std::string_view question,
                                          std::string_view text);

private:
    LTextEditDlg(std::string_view title, std::string_view question, std::string_view text)
        : m_title(title), m_question(question), m_text(text) {}
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

    std::string m_title;
    std::string m_question;
    std::string m_text;
};
