#include "app/dialogs/HotKeyDialog_win.h"

#include <bitset>
#include <utility>

#include "base/LText.h"
#include "base/LTrace.h"
#include "hardware/CommandTable.h"
#include "hardware/FreeHotKey_win.h"
#include "hardware/HotKeyFault.h"
#include "hardware/KeyText.h"
#include "hardware/PlatformKeyName_win.h"
#include "res/Ids.h"
#include "ui/LControlTable.h"
#include "ui/LDialog.h"

namespace {

constexpr char kNoKey[] = "Choose the key: press it while the cursor is in the box \"Key\".";
constexpr char kNoCommand[] = "Choose what the key shall do, in the list \"Command\".";
constexpr char kRepeated[] = "The key %s is a hot key already. Press another one, or edit that hot key.";
constexpr char kUsed[] =
    "The key %s is used by another program or by Windows. It does nothing in Corvane as long as that is so. "
    "Use it all the same?";

constexpr UINT_PTR kTimer = 1;
constexpr UINT kTickMs = 30;  // shorter than a tap on a key

int32_t HeldModifiers() {
    const auto bit = [](int key, int32_t modifier) { return GetKeyState(key) < 0 ? modifier : 0; };
    return bit(VK_MENU, kModifierAlt) | bit(VK_CONTROL, kModifierCtrl) | bit(VK_SHIFT, kModifierShift);
}

KeyCapture CaptureNow(WPARAM key) {
    return CaptureOf(static_cast<uint32_t>(key), HeldModifiers());
}

// Finds keys that went down without a message: of a key that another program has as its hot key, nobody else
// is told.
class PressedKeys {
public:
    // Which keys have gone down since the last call.
    std::bitset<256> Look() {
        constexpr int kFirst = VK_BACK;  // those before it are the mouse's
        std::bitset<256> pressed;
        for (int key = kFirst; key < 255; ++key)
            if (key < VK_LSHIFT || key > VK_RMENU)
                pressed[static_cast<size_t>(key)] = GetAsyncKeyState(key) != 0;
        const std::bitset<256> before = std::exchange(m_pressed, pressed);
        return pressed & ~before;
    }

private:
    std::bitset<256> m_pressed;
};

// The key's box takes the keys by which a dialog is worked too (Tab, Alt with a letter), so it comes last in
// the order of the Tab key, and Shift+Tab leaves it.
class HotKeyDialog final : public LDialog {
public:
    HotKeyDialog(const HotKey& before, const std::vector<HotKey>& others)
        : m_hotKey(before), m_agreed(before), m_others(others) {}
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
        if (control == IDC_HOTKEY_KEY && HIWORD(wParam) == EN_SETFOCUS) Listen();
        if (control == IDC_HOTKEY_KEY && HIWORD(wParam) == EN_KILLFOCUS) {
            KillTimer(Window(), kTimer);
            ShowKey();
        }
        if (message == WM_TIMER && wParam == kTimer) EvTimer();
        if (control == IDOK && !MayAccept()) return true;
        return LDialog::HandleMessage(message, wParam, lParam, result);
    }

    void Listen() {
        SetWindowTextA(Item(IDC_HOTKEY_KEY), "Press the key");
        m_pressed.Look();
        SetTimer(Window(), kTimer, kTickMs, nullptr);
    }

    void EvTimer() {
        const std::bitset<256> pressed = m_pressed.Look();
        for (size_t key = 0; key < pressed.size(); ++key) {
            const HotKey hotKey = {static_cast<int32_t>(key), HeldModifiers()};
            if (!pressed[key] || CaptureNow(key) != KeyCapture::Store || IsHotKeyFree(Window(), hotKey))
                continue;
            EvKey(key);
            return;
        }
    }

    HotKeyFault Fault() {
        if (m_hotKey.HasKeyOf(m_agreed)) return FaultOf(m_hotKey, {}, [](const HotKey&) { return true; });
        return FaultOf(m_hotKey, m_others,
                       [this](const HotKey& hotKey) { return IsHotKeyFree(Window(), hotKey); });
    }

    // Whether the choice can be accepted; tells the user why not.
    bool MayAccept() {
        m_hotKey.command = LSelectedListItem(Item(IDC_HOTKEY_COMMAND)).value_or(m_hotKey.command);
        HotKeyFault fault = Fault();
        const std::string key = KeyText(m_hotKey, PlatformKeyName);
        if (fault == HotKeyFault::Used) {
            if (Box(IDC_HOTKEY_KEY, LFormat(kUsed, key.c_str()), MB_YESNO | MB_DEFBUTTON2) != IDYES)
                return false;
            m_agreed = m_hotKey;
            fault = Fault();
        }
        switch (fault) {
            case HotKeyFault::NoKey:
                return Box(IDC_HOTKEY_KEY, kNoKey, MB_OK), false;
            case HotKeyFault::Repeated:
                return Box(IDC_HOTKEY_KEY, LFormat(kRepeated, key.c_str()), MB_OK), false;
            case HotKeyFault::NoCommand:
                return Box(IDC_HOTKEY_COMMAND, kNoCommand, MB_OK), false;
            default:
                return true;
        }
    }

    // Afterwards the control that the text is about has the keyboard, unless the answer is Yes.
    int Box(int control, std::string_view text, UINT buttons) {
        const int answer = LMessageBox(Window(), text, buttons == MB_OK ? "Error" : "Key in Use",
                                       buttons | MB_ICONEXCLAMATION);
        if (IsOpen() && answer != IDYES)
            SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(control)), TRUE);
        return answer;
    }

    void ShowKey() { SetWindowTextA(Item(IDC_HOTKEY_KEY), KeyText(m_hotKey, PlatformKeyName).c_str()); }

    void EvKey(WPARAM key) {
        if (CaptureNow(key) != KeyCapture::Store) return;
        m_hotKey.key = static_cast<int32_t>(key);
        m_hotKey.modifiers = HeldModifiers();
        SendMessageA(Window(), WM_COMMAND, IDOK, 0);
    }

    static bool IsTaken(WPARAM key) { return CaptureNow(key) != KeyCapture::PassOn; }

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
    HotKey m_agreed;  // whose key the user has or wants, whoever else has it
    const std::vector<HotKey>& m_others;
    PressedKeys m_pressed;
    WNDPROC m_boxProc = nullptr;
};

}  // namespace

std::optional<HotKey> AskForHotKey(HWND owner, const HotKey& before, const std::vector<HotKey>& others) {
    HotKeyDialog dialog(before, others);
    if (dialog.RunModal(IDD_HOTKEY, owner) != IDOK) return std::nullopt;
    return dialog.Chosen();
}
