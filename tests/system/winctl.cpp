// winctl.exe: drives and observes a window of another program, as any program could. It reads commands from
// its input, one JSON array per line, and answers each with one line of JSON; null when it could not be
// obeyed.

#include <windows.h>

#include <commctrl.h>
#include <sddl.h>

#include <array>
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/system/ProcessResources_win.h"
#include "tests/system/RemoteMemory_win.h"

namespace {

// Long enough for a window thread that writes to a disk, short enough to call a window hung.
constexpr UINT kAnswerMs = 10000;

using Json = nlohmann::json;

const char* Text(const Json& field) {
    return field.get_ref<const std::string&>().c_str();
}

HWND Window(const Json& command) {
    return reinterpret_cast<HWND>(command[1].get<INT_PTR>());
}

INT_PTR Handle(HWND window) {
    return reinterpret_cast<INT_PTR>(window);
}

bool Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR* result = nullptr) {
    DWORD_PTR ignored = 0;
    return SendMessageTimeoutA(window, message, wParam, lParam, SMTO_NORMAL, kAnswerMs,
                               result ? result : &ignored) != 0;
}

Json Success(bool succeeded) {
    return succeeded ? Json(true) : Json();
}

// The result of a message that is on its way.
Json Result(bool answered, DWORD_PTR result) {
    return answered ? Json{{"result", static_cast<LONG_PTR>(result)}} : Json();
}

std::string TextOf(HWND window) {
    DWORD_PTR length = 0;
    if (!Ask(window, WM_GETTEXTLENGTH, 0, 0, &length)) return "";
    std::string text(length + 1, '\0');
    DWORD_PTR copied = 0;
    Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), &copied);
    text.resize(copied);
    return text;
}

std::string ClassOf(HWND window) {
    char name[128] = "";
    GetClassNameA(window, name, sizeof name);
    return name;
}

Json Described(HWND window) {
    RECT r = {};
    GetWindowRect(window, &r);
    return {{"hwnd", Handle(window)},
            {"class", ClassOf(window)},
            {"id", GetDlgCtrlID(window)},
            {"text", TextOf(window)},
            {"visible", IsWindowVisible(window) != 0},
            {"enabled", IsWindowEnabled(window) != 0},
            {"rect", {r.left, r.top, r.right, r.bottom}},
            {"exstyle", GetWindowLongA(window, GWL_EXSTYLE)}};
}

BOOL CALLBACK AddChild(HWND child, LPARAM children) {
    reinterpret_cast<Json*>(children)->push_back(Described(child));
    return TRUE;
}

// A window and its controls.
Json DescribedWithChildren(HWND window) {
    Json described = Described(window), children = Json::array();
    EnumChildWindows(window, AddChild, reinterpret_cast<LPARAM>(&children));
    described["children"] = children;
    return described;
}

// --- What a program shows -------------------------------------------------------------------------------

// find <class> <title>: the first top-level window of exactly these
Json Find(const Json& command) {
    HWND window = FindWindowA(Text(command[1]), Text(command[2]));
    DWORD process = 0;
    if (window) GetWindowThreadProcessId(window, &process);
    return {{"hwnd", Handle(window)}, {"pid", process}};
}

struct WindowSearch {
    DWORD process;
    Json found;
};

BOOL CALLBACK AddTopLevel(HWND window, LPARAM search) {
    auto& wanted = *reinterpret_cast<WindowSearch*>(search);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == wanted.process && IsWindowVisible(window))
        wanted.found.push_back(DescribedWithChildren(window));
    return TRUE;
}

// windows <process>: its visible top-level windows with their controls
Json Windows(const Json& command) {
    WindowSearch search = {command[1].get<DWORD>(), Json::array()};
    EnumWindows(AddTopLevel, reinterpret_cast<LPARAM>(&search));
    return {{"windows", search.found}};
}

// window <hwnd>: one window and its controls
Json OneWindow(const Json& command) {
    HWND window = Window(command);
    if (!IsWindow(window)) return {};
    Json described = DescribedWithChildren(window);
    described["minimized"] = IsIconic(window) != 0;
    described["maximized"] = IsZoomed(window) != 0;
    described["foreground"] = GetForegroundWindow() == window;
    return described;
}

// resources <process>: how many kernel handles, drawing objects and windows it has
Json Resources(const Json& command) {
    const ProcessResources found = ResourcesOf(command[1].get<DWORD>());
    return {{"handles", found.handles}, {"drawing", found.drawing}, {"windows", found.windows}};
}

// --- The list view --------------------------------------------------------------------------------------

constexpr SIZE_T kItemTextBytes = 512;

std::string ItemText(HWND list, RemoteMemory& memory, int row, int column) {
    LVITEMA item = {};
    item.iSubItem = column;
    item.pszText = memory.At(sizeof item);
    item.cchTextMax = static_cast<int>(kItemTextBytes);
    std::array<char, kItemTextBytes> text = {};
    if (!memory.Put(0, &item, sizeof item) ||
        !Ask(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.At(0))) ||
        !memory.Take(sizeof item, text.data(), text.size() - 1)) {
        return "";
    }
    return text.data();
}

// list <hwnd>: the rows with their texts, number (lParam), selection and focus
Json List(const Json& command) {
    HWND list = Window(command);
    RemoteMemory memory(list, sizeof(LVITEMA) + kItemTextBytes);
    DWORD_PTR count = 0;
    if (memory.IsError() || !Ask(list, LVM_GETITEMCOUNT, 0, 0, &count)) return {};
    Json rows = Json::array();
    for (int row = 0; row < static_cast<int>(count); ++row) {
        LVITEMA item = {};
        item.mask = LVIF_PARAM | LVIF_STATE;
        item.iItem = row;
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        memory.Put(0, &item, sizeof item);
        Ask(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(memory.At(0)));
        memory.Take(0, &item, sizeof item);
        Json texts = Json::array();
        for (int column = 0; column < 6; ++column) texts.push_back(ItemText(list, memory, row, column));
        rows.push_back({{"number", item.lParam},
                        {"selected", (item.state & LVIS_SELECTED) != 0},
                        {"focused", (item.state & LVIS_FOCUSED) != 0},
                        {"texts", texts}});
    }
    return {{"rows", rows}};
}

// select <hwnd> <row> <0|1>: takes the selection (and with 1 the focus) of one row; row -1 is every row
Json Select(const Json& command) {
    HWND list = Window(command);
    RemoteMemory memory(list, sizeof(LVITEMA));
    LVITEMA item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = command[3] != 0 ? item.stateMask : 0;
    DWORD_PTR done = 0;
    return Success(!memory.IsError() && memory.Put(0, &item, sizeof item) &&
                   Ask(list, LVM_SETITEMSTATE, command[2].get<WPARAM>(),
                       reinterpret_cast<LPARAM>(memory.At(0)), &done) &&
                   done != 0);
}

// items <hwnd>: the texts of a list box
Json Items(const Json& command) {
    Json items = Json::array();
    for (WPARAM row = 0;; ++row) {
        DWORD_PTR length = 0;
        if (!Ask(Window(command), LB_GETTEXTLEN, row, 0, &length) || static_cast<LONG>(length) < 0) break;
        // Wide: the platform under test fails with the other between two programs.
        std::wstring text(length + 1, L'\0');
        SendMessageW(Window(command), LB_GETTEXT, row, reinterpret_cast<LPARAM>(text.data()));
        items.push_back(std::string(text.begin(), text.end() - 1));
    }
    return items;
}

// --- Acting ---------------------------------------------------------------------------------------------

// send <hwnd> <message> <wParam> <lParam>: the message's result
Json Send(const Json& command) {
    DWORD_PTR result = 0;
    const bool answered = Ask(Window(command), command[2].get<UINT>(), command[3].get<WPARAM>(),
                              command[4].get<LPARAM>(), &result);
    return Result(answered, result);
}

// post <hwnd> <message> <wParam> <lParam>
Json Post(const Json& command) {
    return Success(PostMessageA(Window(command), command[2].get<UINT>(), command[3].get<WPARAM>(),
                                command[4].get<LPARAM>()) != 0);
}

// sendatom <hwnd> <message> <wParam> <text>: sends a message whose lParam is a global atom with this text
Json SendAtom(const Json& command) {
    const ATOM atom = GlobalAddAtomA(Text(command[4]));
    DWORD_PTR result = 0;
    const bool answered =
        Ask(Window(command), command[2].get<UINT>(), command[3].get<WPARAM>(), atom, &result);
    GlobalDeleteAtom(atom);
    return Result(answered, result);
}

// click <hwnd>: a push button is pressed and released; returns at once, since that may open a box
Json Click(const Json& command) {
    return Success(PostMessageA(Window(command), BM_CLICK, 0, 0) != 0);
}

HANDLE s_held = INVALID_HANDLE_VALUE;

// hold <path>: keeps a file open so that no other program can open it, until release
Json Hold(const Json& command) {
    s_held = CreateFileA(Text(command[1]), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
    return Success(s_held != INVALID_HANDLE_VALUE);
}

Json Release(const Json&) {
    return Success(CloseHandle(s_held) != 0);
}

// takekey <modifiers> <key>: has a hot key, instead of the one it had; without a key none
Json TakeKey(const Json& command) {
    UnregisterHotKey(nullptr, 1);
    const UINT key = command[2].get<UINT>();
    return Success(key == 0 || RegisterHotKey(nullptr, 1, command[1].get<UINT>(), key) != 0);
}

// setreg <subkey> <value> <text>: a text in the machine's registry
Json SetRegistry(const Json& command) {
    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_LOCAL_MACHINE, Text(command[1]), &key) != ERROR_SUCCESS) return {};
    const std::string text = Text(command[3]);
    RegSetValueExA(key, Text(command[2]), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
    RegCloseKey(key);
    return true;
}

// lockreg <key>: a key of the machine that this user may only read, as one without the rights of an
// administrator
Json LockRegistry(const Json& command) {
    HKEY key = nullptr;
    PSECURITY_DESCRIPTOR readers = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorA("D:(A;;KR;;;WD)", SDDL_REVISION_1, &readers,
                                                         nullptr);
    RegCreateKeyA(HKEY_LOCAL_MACHINE, Text(command[1]), &key);
    const LSTATUS result = RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, readers);
    RegCloseKey(key);
    return Success(result == ERROR_SUCCESS);
}

// --- The server -----------------------------------------------------------------------------------------

constexpr struct {
    const char* name;
    Json (*handle)(const Json& command);
} kCommands[] = {
    {"click", Click},         {"find", Find},         {"hold", Hold},
    {"items", Items},         {"list", List},         {"lockreg", LockRegistry},
    {"post", Post},           {"release", Release},   {"select", Select},
    {"send", Send},           {"sendatom", SendAtom}, {"setreg", SetRegistry},
    {"takekey", TakeKey},     {"window", OneWindow},  {"windows", Windows},
    {"resources", Resources},
};

}  // namespace

int main() {
    std::string line;
    while (std::getline(std::cin, line)) {
        const Json command = Json::parse(line);
        for (const auto& known : kCommands) {
            if (command[0] != known.name) continue;
            // A text in the Windows code page may be no UTF-8.
            const std::string answer =
                known.handle(command).dump(-1, ' ', true, Json::error_handler_t::replace);
            std::puts(answer.c_str());
            std::fflush(stdout);
        }
    }
    return 0;
}
