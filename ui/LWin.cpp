#include "ui/LWin.h"

static HINSTANCE s_instance = nullptr;

HINSTANCE LInstance() {
    return s_instance;
}
void LSetInstance(HINSTANCE instance) {
    s_instance = instance;
}

std::string LWindowText(HWND window) {
    const int length = GetWindowTextLengthA(window);
    if (length <= 0) return {};
    std::string text(static_cast<size_t>(length) + 1, '\0');
    const int copied = GetWindowTextA(window, text.data(), length + 1);
    text.resize(copied > 0 ? static_cast<size_t>(copied) : 0);
    return text;
}

void LSetWindowText(HWND window, std::string_view text) {
    if (LWindowText(window) != text) SetWindowTextA(window, std::string(text).c_str());
}

int LMessageBox(HWND owner, std::string_view text, std::string_view caption, UINT flags) {
    return MessageBoxA(owner, std::string(text).c_str(), std::string(caption).c_str(), flags);
}

namespace {
struct GlobalMemoryTraits {
    using Type = HGLOBAL;
    static Type None() { return nullptr; }
    static void Close(Type h) { GlobalFree(h); }
};
}  // namespace

bool LCopyToClipboard(std::string_view text) {
    LOwned<GlobalMemoryTraits> memory(GlobalAlloc(GMEM_MOVEABLE, text.size() + 1));
    char* const bytes = memory ? static_cast<char*>(GlobalLock(memory.Get())) : nullptr;
    if (bytes == nullptr) return false;
    bytes[text.copy(bytes, text.size())] = '\0';
    GlobalUnlock(memory.Get());
    if (!OpenClipboard(nullptr)) return false;
    EmptyClipboard();
    const bool isTaken = SetClipboardData(CF_TEXT, memory.Get()) != nullptr;
    if (isTaken) memory.Release();  // the clipboard's own now
    CloseClipboard();
    return isTaken;
}
