#include "app/window/Keyboard_win.h"

#include <utility>

#include "app/window/CommandState.h"
#include "base/LText.h"
#include "res/Ids.h"

constexpr LPARAM kKeyWasDown = 1L << 30;  // of a key message: the key repeats

static bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

// Whether characters belong to what has the focus.
static bool IsText(KeyFocus focus) {
    return focus == KeyFocus::Notes || focus == KeyFocus::NameEditor || focus == KeyFocus::OtherWindow;
}

static bool IsOfClass(HWND control, const char* wanted) {
    char name[16] = {};
    GetClassNameA(control, name, sizeof name);
    return LEqualNoCase(name, wanted);
}

bool Keyboard::PreTranslateMessage(const MSG& message) {
    switch (message.message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            return EvKeyDown(message);
        case WM_KEYUP:
            if (m_heldKey == 0 || message.wParam != m_heldKey) return false;
            ReleaseHeld();
            return true;
        // The list view would select the row whose name starts with the character, and another dictation
        // would become current; a button would take it as a mnemonic without Alt, and the "e" of a word would
        // send.
        case WM_CHAR:
            return !IsText(FocusOf(message.hwnd));
        // Alt with the letter of a button would press it again with each repeat.
        case WM_SYSCHAR:
            return (message.lParam & kKeyWasDown) != 0;
        case WM_LBUTTONDBLCLK:
            return IsSecondClick(message);
        default:
            return false;
    }
}

bool Keyboard::EvKeyDown(const MSG& message) {
    const KeyAction action = ActionOf({.key = static_cast<int>(message.wParam),
                                       .alt = IsDown(VK_MENU),
                                       .ctrl = IsDown(VK_CONTROL),
                                       .shift = IsDown(VK_SHIFT),
                                       .repeats = (message.lParam & kKeyWasDown) != 0,
                                       .focus = FocusOf(message.hwnd)});
    Act(action, message);
    return action.kind != KeyAction::Kind::PassOn;
}

void Keyboard::Act(const KeyAction& action, const MSG& message) {
    switch (action.kind) {
        case KeyAction::Kind::Command:
            if (!IsSecondPress(action.command, message.time)) m_target.Give(action.command);
            break;
        case KeyAction::Kind::Wind:
            ReleaseHeld();
            m_heldKey = message.wParam;
            m_direction = action.direction;
            m_target.WindByKey(m_direction, true);
            break;
        case KeyAction::Kind::SelectAll:
            if (FocusOf(message.hwnd) == KeyFocus::Notes)
                SendMessageA(message.hwnd, EM_SETSEL, 0, -1);
            else
                m_target.SelectAllRows();
            break;
        case KeyAction::Kind::PlayRow:
            m_target.PlayRow();
            break;
        case KeyAction::Kind::PressButton: {
            const int button = GetDlgCtrlID(message.hwnd);
            if (!IsSecondPress(MenuCommandOf(button), message.time)) m_target.Give(button);
            break;
        }
        case KeyAction::Kind::Swallow:
        case KeyAction::Kind::PassOn:
            break;
    }
}

void Keyboard::ReleaseHeld() {
    if (std::exchange(m_heldKey, 0) != 0) m_target.WindByKey(m_direction, false);
}

// Two presses in quick succession count as one where the second would take another dictation.
bool Keyboard::IsSecondPress(int command, DWORD timeMs) {
    const int before = std::exchange(m_lastCommand, command);
    const DWORD sinceMs = timeMs - std::exchange(m_lastCommandMs, timeMs);
    const bool isSecond = CountsOnce(command) && command == before && sinceMs <= GetDoubleClickTime();
    return isSecond;
}

KeyFocus Keyboard::FocusOf(HWND control) const {
    if (control != m_window && !IsChild(m_window, control)) return KeyFocus::OtherWindow;
    if (control == GetDlgItem(m_window, IDC_NOTES)) return KeyFocus::Notes;
    if (control == GetDlgItem(m_window, IDC_LIST)) return KeyFocus::List;
    if (IsOfClass(control, "Edit")) return KeyFocus::NameEditor;
    return IsOfClass(control, "Button") ? KeyFocus::Button : KeyFocus::Elsewhere;
}

bool Keyboard::IsSecondClick(const MSG& message) const {
    return IsChild(m_window, message.hwnd) && CountsOnce(MenuCommandOf(GetDlgCtrlID(message.hwnd)));
}
