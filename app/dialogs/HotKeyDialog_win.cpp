#include "app/dialogs/HotKeyDialog_win.h"

#include "base/LTrace.h"
#include "hardware/CommandTable.h"
#include "hardware/KeyText.h"
#include "hardware/PlatformKeyName_win.h"
#include "res/Ids.h"
#include "ui/LControlTable.h"
#include "ui/LDialog.h"

namespace {

int32_t HeldModifiers() {
    const auto bit = [](int key, int32_t modifier) { return GetKeyState(key) < 0 ? modifier : 0; };
    return bit(VK_MENU, kModifierAlt) | bit(VK_CONTROL, kModifierCtrl) | bit(VK_SHIFT, kModifierShift);
}

// The key's box takes the keys by which a dialog is worked too (Tab, Alt with a letter), so it comes last in
// the order of the Tab key.
class HotKeyDialog final : public LDialog {
public:
    explicit HotKeyDialog(const HotKey& before) : m_hotKey(before) {}
    const HotKey& Chosen() const { return m_hotKey; }

private:
    bool InitDialog() override {
        const HWND list = Item(IDC_HOTKEY_COMMAND);
        for (const CommandName* entry = kCommandNames; entry->name != nullptr; ++entry)
            LAddListItem(list, entry->name, entry->command);
        if (!LSelectListItem(list, m_hotKey.command)) LTrace("LKeysPage::InitDialog invalid command");
        const HWND box = Item(IDC_HOTKEY_KEY);
        ShowKey();
        SetWindowLongA(box, GWL_USERDATA, reinterpret_cast<LONG>(this));
        m_boxProc =
            reinterpret_cast<WNDPROC>(SetWindowLongA(box, GWL_WNDPROC, reinterpret_cast<LONG>(BoxProc)));
        return true;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        const WORD control = message == WM_COMMAND ? LOWORD(wParam) : 0;
        if (control == IDC_HOTKEY_KEY && HIWORD(wParam) == EN_SETFOCUS)
            SetWindowTextA(Item(IDC_HOTKEY_KEY), "Press the key");
        if (control == IDC_HOTKEY_KEY && HIWORD(wParam) == EN_KILLFOCUS) ShowKey();
        if (control == IDOK)
            m_hotKey.command = LSelectedListItem(Item(IDC_HOTKEY_COMMAND)).value_or(m_hotKey.command);
        return LDialog::HandleMessage(message, wParam, lParam, result);
    }

    void ShowKey() { SetWindowTextA(Item(IDC_HOTKEY_KEY), KeyText(m_hotKey, PlatformKeyName).c_str()); }

    void EvKey(WPARAM key) {
        if (CaptureOf(static_cast<uint32_t>(key)) != KeyCapture::Store) return;
        m_hotKey.key = static_cast<int32_t>(key);
        m_hotKey.modifiers = HeldModifiers();
        SendMessageA(Window(), WM_COMMAND, IDOK, 0);
    }

    static bool IsTaken(WPARAM key) { return CaptureOf(static_cast<uint32_t>(key)) != KeyCapture::PassOn; }

    static LRESULT CALLBACK BoxProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* dialog = reinterpret_cast<HotKeyDialog*>(GetWindowLongA(box, GWL_USERDATA));
        switch (message) {
            case WM_KEYDOWN:
            case WM_SYSKEYDOWN:
                if (!IsTaken(wParam)) break;
                dialog->EvKey(wParam);
                return 0;
            case WM_CHAR:
            case WM_SYSCHAR:
                return 0;  // of a key that went down before
            case WM_GETDLGCODE:
                // The dialog asks before it takes a key for itself.
                if (const auto* key = reinterpret_cast<const MSG*>(lParam))
                    return IsTaken(key->wParam) ? DLGC_WANTMESSAGE : 0;
                break;
            default:
                break;
        }
        return CallWindowProcA(dialog->m_boxProc, box, message, wParam, lParam);
    }

    HotKey m_hotKey;
    WNDPROC m_boxProc = nullptr;
};

}  // namespace

std::optional<HotKey> AskForHotKey(HWND owner, const HotKey& before) {
    HotKeyDialog dialog(before);
    if (dialog.RunModal(IDD_HOTKEY, owner) != IDOK) return std::nullopt;
    return dialog.Chosen();
}
