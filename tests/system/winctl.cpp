// winctl.exe: drives and observes a window of another program, as any program could. It reads commands
// from its input, one per line, fields divided by tabs (\t, \n, \r and \\ are escaped), and answers each
// with one line of JSON: an object with "ok", and "error" when that is false.

#include <windows.h>

#include <commctrl.h>
#include <mmsystem.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "tests/system/Json.h"
#include "tests/system/RemoteMemory_win.h"
#include "tests/system/menuprobe.h"

namespace {

// Long enough for a window thread that writes to a disk, short enough to call a window hung.
constexpr UINT kAnswerMs = 10000;

using Fields = std::vector<std::string>;

// Adds members to the answer; returns the reason when it cannot.
using Handler = const char* (*)(const Fields& fields, Json& answer);

int64_t Number(const Fields& fields, size_t i) {
    return i < fields.size() ? std::strtoll(fields[i].c_str(), nullptr, 0) : 0;
}

HWND Window(const Fields& fields) {
    return reinterpret_cast<HWND>(static_cast<INT_PTR>(Number(fields, 1)));
}

bool Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR* result = nullptr) {
    DWORD_PTR ignored = 0;
    return SendMessageTimeoutA(window, message, wParam, lParam, SMTO_NORMAL, kAnswerMs,
                               result ? result : &ignored) != 0;
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

void DescribeWindow(HWND window, Json& json) {
    RECT r = {};
    GetWindowRect(window, &r);
    json.Member("hwnd", reinterpret_cast<INT_PTR>(window)).Member("class", ClassOf(window));
    json.Member("id", GetDlgCtrlID(window)).Member("text", TextOf(window));
    json.Member("visible", IsWindowVisible(window) != 0).Member("enabled", IsWindowEnabled(window) != 0);
    json.Key("rect").Open('[').Value(int64_t{r.left}).Value(int64_t{r.top});
    json.Value(int64_t{r.right}).Value(int64_t{r.bottom}).Close(']');
    const auto style = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
    const auto extended = static_cast<DWORD>(GetWindowLongA(window, GWL_EXSTYLE));
    json.Member("style", style).Member("exstyle", extended);
}

BOOL CALLBACK AddChild(HWND child, LPARAM json) {
    auto& out = *reinterpret_cast<Json*>(json);
    out.Open('{');
    DescribeWindow(child, out);
    out.Close('}');
    return TRUE;
}

// --- What a program shows -------------------------------------------------------------------------------

// find <class> <title>: the first top-level window of exactly these
const char* Find(const Fields& fields, Json& answer) {
    if (fields.size() < 3) return "usage";
    HWND window = FindWindowA(fields[1].c_str(), fields[2].c_str());
    DWORD process = 0;
    if (window) GetWindowThreadProcessId(window, &process);
    answer.Member("hwnd", reinterpret_cast<INT_PTR>(window)).Member("pid", process);
    return nullptr;
}

struct WindowSearch {
    DWORD process;
    Json* json;
};

BOOL CALLBACK AddTopLevel(HWND window, LPARAM search) {
    const auto& wanted = *reinterpret_cast<WindowSearch*>(search);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != wanted.process || !IsWindowVisible(window)) return TRUE;
    wanted.json->Open('{');
    DescribeWindow(window, *wanted.json);
    wanted.json->Member("owner", reinterpret_cast<INT_PTR>(GetWindow(window, GW_OWNER)));
    wanted.json->Key("children").Open('[');
    EnumChildWindows(window, AddChild, reinterpret_cast<LPARAM>(wanted.json));
    wanted.json->Close(']').Close('}');
    return TRUE;
}

// windows <process>: its visible top-level windows with their controls
const char* Windows(const Fields& fields, Json& answer) {
    WindowSearch search = {static_cast<DWORD>(Number(fields, 1)), &answer};
    answer.Key("windows").Open('[');
    EnumWindows(AddTopLevel, reinterpret_cast<LPARAM>(&search));
    answer.Close(']');
    return nullptr;
}

// window <hwnd>: one window and its controls
const char* OneWindow(const Fields& fields, Json& answer) {
    if (!IsWindow(Window(fields))) return "no such window";
    DescribeWindow(Window(fields), answer);
    answer.Member("minimized", IsIconic(Window(fields)) != 0)
        .Member("maximized", IsZoomed(Window(fields)) != 0);
    answer.Member("foreground", GetForegroundWindow() == Window(fields));
    answer.Key("children").Open('[');
    EnumChildWindows(Window(fields), AddChild, reinterpret_cast<LPARAM>(&answer));
    answer.Close(']');
    return nullptr;
}

// text <hwnd>
const char* Text(const Fields& fields, Json& answer) {
    answer.Member("text", TextOf(Window(fields)));
    return nullptr;
}

// Has the window's own thread write what stands in its menu into the shared memory.
bool ProbeMenu(HWND window) {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, sizeof path);
    std::string library(path);
    library.resize(library.find_last_of('\\') + 1);
    library += "menuprobe.dll";
    HMODULE probe = LoadLibraryA(library.c_str());
    if (!probe) return false;
    auto* procedure = reinterpret_cast<HOOKPROC>(reinterpret_cast<void*>(GetProcAddress(probe, "MenuProbe")));
    HHOOK hook =
        SetWindowsHookExA(WH_CALLWNDPROC, procedure, probe, GetWindowThreadProcessId(window, nullptr));
    const bool answered = hook && Ask(window, RegisterWindowMessageA(kMenuProbeName), 0, 0);
    if (hook) UnhookWindowsHookEx(hook);
    FreeLibrary(probe);
    return answered;
}

// menu <hwnd>: the whole menu
const char* Menu(const Fields& fields, Json& answer) {
    ProcessHandle mapping(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                             kMenuProbeBytes, kMenuProbeName));
    if (!mapping) return "no shared memory";
    auto* shared = static_cast<char*>(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, 0));
    if (!shared) return "no view";
    shared[0] = 0;
    const std::string menu(ProbeMenu(Window(fields)) ? shared : "");
    UnmapViewOfFile(shared);
    if (menu.empty()) return "no answer";
    answer.Key("menu").Raw(menu);
    return nullptr;
}

// progress <hwnd>: position and range of a progress bar
const char* Progress(const Fields& fields, Json& answer) {
    DWORD_PTR position = 0;
    DWORD_PTR low = 0;
    DWORD_PTR high = 0;
    if (!Ask(Window(fields), PBM_GETPOS, 0, 0, &position) ||
        !Ask(Window(fields), PBM_GETRANGE, TRUE, 0, &low) ||
        !Ask(Window(fields), PBM_GETRANGE, FALSE, 0, &high)) {
        return "no answer";
    }
    answer.Member("position", position).Member("low", low).Member("high", high);
    return nullptr;
}

// devices: the wave devices of this machine
const char* Devices(const Fields&, Json& answer) {
    answer.Key("wavein").Open('[');
    for (UINT i = 0; i < waveInGetNumDevs(); ++i) {
        WAVEINCAPSA caps = {};
        waveInGetDevCapsA(i, &caps, sizeof caps);
        answer.Value(std::string_view(caps.szPname));
    }
    answer.Close(']').Key("waveout").Open('[');
    for (UINT i = 0; i < waveOutGetNumDevs(); ++i) {
        WAVEOUTCAPSA caps = {};
        waveOutGetDevCapsA(i, &caps, sizeof caps);
        answer.Value(std::string_view(caps.szPname));
    }
    answer.Close(']');
    return nullptr;
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

void DescribeColumns(HWND list, RemoteMemory& memory, Json& answer) {
    answer.Key("columns").Open('[');
    for (int column = 0; column < 32; ++column) {
        LVCOLUMNA wanted = {};
        wanted.mask = LVCF_TEXT | LVCF_WIDTH;
        wanted.pszText = memory.At(sizeof wanted);
        wanted.cchTextMax = static_cast<int>(kItemTextBytes);
        std::array<char, kItemTextBytes> text = {};
        DWORD_PTR found = 0;
        memory.Put(0, &wanted, sizeof wanted);
        if (!Ask(list, LVM_GETCOLUMNA, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(memory.At(0)),
                 &found) ||
            !found || !memory.Take(0, &wanted, sizeof wanted) ||
            !memory.Take(sizeof wanted, text.data(), text.size() - 1)) {
            break;
        }
        answer.Open('{').Member("text", text.data()).Member("width", wanted.cx).Close('}');
    }
    answer.Close(']');
}

// list <hwnd> [<first row>]: the headings, and the rows with their texts, number (lParam), selection and
// focus
const char* List(const Fields& fields, Json& answer) {
    HWND list = Window(fields);
    RemoteMemory memory(list, sizeof(LVITEMA) + sizeof(LVCOLUMNA) + kItemTextBytes);
    DWORD_PTR rows = 0;
    if (memory.IsError() || !Ask(list, LVM_GETITEMCOUNT, 0, 0, &rows)) return "no list";
    DescribeColumns(list, memory, answer);
    answer.Member("count", rows).Key("rows").Open('[');
    for (int row = static_cast<int>(Number(fields, 2)); row < static_cast<int>(rows); ++row) {
        LVITEMA item = {};
        item.mask = LVIF_PARAM | LVIF_STATE;
        item.iItem = row;
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        memory.Put(0, &item, sizeof item);
        Ask(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(memory.At(0)));
        memory.Take(0, &item, sizeof item);
        answer.Open('{').Member("number", item.lParam).Member("selected", (item.state & LVIS_SELECTED) != 0);
        answer.Member("focused", (item.state & LVIS_FOCUSED) != 0).Key("texts").Open('[');
        for (int column = 0; column < 6; ++column)
            answer.Value(std::string_view(ItemText(list, memory, row, column)));
        answer.Close(']').Close('}');
    }
    answer.Close(']');
    return nullptr;
}

// select <hwnd> <row> <0|1>: takes the selection (and with 1 the focus) of one row; row -1 is every row
const char* Select(const Fields& fields, Json&) {
    HWND list = Window(fields);
    RemoteMemory memory(list, sizeof(LVITEMA));
    LVITEMA item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = Number(fields, 3) != 0 ? item.stateMask : 0;
    DWORD_PTR done = 0;
    if (memory.IsError() || !memory.Put(0, &item, sizeof item) ||
        !Ask(list, LVM_SETITEMSTATE, static_cast<WPARAM>(Number(fields, 2)),
             reinterpret_cast<LPARAM>(memory.At(0)), &done)) {
        return "no list";
    }
    return done ? nullptr : "refused";
}

// --- Acting ---------------------------------------------------------------------------------------------

// send <hwnd> <message> <wParam> <lParam>: the message's result
const char* Send(const Fields& fields, Json& answer) {
    DWORD_PTR result = 0;
    if (!Ask(Window(fields), static_cast<UINT>(Number(fields, 2)), static_cast<WPARAM>(Number(fields, 3)),
             static_cast<LPARAM>(Number(fields, 4)), &result)) {
        return "no answer";
    }
    answer.Member("result", static_cast<LONG_PTR>(result));
    return nullptr;
}

// post <hwnd> <message> <wParam> <lParam>
const char* Post(const Fields& fields, Json&) {
    return PostMessageA(Window(fields), static_cast<UINT>(Number(fields, 2)),
                        static_cast<WPARAM>(Number(fields, 3)), static_cast<LPARAM>(Number(fields, 4)))
               ? nullptr
               : "no such window";
}

// sendatom <hwnd> <message> <wParam> <text>: sends a message whose lParam is a global atom with this text
const char* SendAtom(const Fields& fields, Json& answer) {
    if (fields.size() < 5) return "usage";
    const ATOM atom = GlobalAddAtomA(fields[4].c_str());
    if (!atom) return "no atom";
    DWORD_PTR result = 0;
    const bool answered = Ask(Window(fields), static_cast<UINT>(Number(fields, 2)),
                              static_cast<WPARAM>(Number(fields, 3)), atom, &result);
    GlobalDeleteAtom(atom);
    answer.Member("result", static_cast<LONG_PTR>(result));
    return answered ? nullptr : "no answer";
}

// click <hwnd>: a push button is pressed and released; returns at once, since that may open a box
const char* Click(const Fields& fields, Json&) {
    return PostMessageA(Window(fields), BM_CLICK, 0, 0) ? nullptr : "no such window";
}

// type <hwnd> <text>: characters typed into a control
const char* Type(const Fields& fields, Json&) {
    if (fields.size() < 3) return "usage";
    for (const char c : fields[2]) {
        if (!Ask(Window(fields), WM_CHAR, static_cast<unsigned char>(c), 1)) return "no answer";
    }
    return nullptr;
}

// settext <hwnd> <text>
const char* SetText(const Fields& fields, Json&) {
    if (fields.size() < 3) return "usage";
    return Ask(Window(fields), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(fields[2].c_str())) ? nullptr
                                                                                           : "no answer";
}

// setreg <subkey> <value> [<text>]: a text in the machine's registry; without text the value is removed
const char* SetRegistry(const Fields& fields, Json&) {
    if (fields.size() < 3) return "usage";
    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_LOCAL_MACHINE, fields[1].c_str(), &key) != ERROR_SUCCESS) return "no key";
    const char* name = fields[2].c_str();
    if (fields.size() > 3) {
        RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(fields[3].c_str()),
                       static_cast<DWORD>(fields[3].size() + 1));
    } else {
        RegDeleteValueA(key, name);
    }
    RegCloseKey(key);
    return nullptr;
}

// --- The server -----------------------------------------------------------------------------------------

constexpr struct {
    const char* name;
    Handler handle;
} kCommands[] = {
    {"click", Click}, {"devices", Devices},   {"find", Find},          {"list", List},
    {"menu", Menu},   {"post", Post},         {"progress", Progress},  {"select", Select},
    {"send", Send},   {"sendatom", SendAtom}, {"setreg", SetRegistry}, {"settext", SetText},
    {"text", Text},   {"type", Type},         {"window", OneWindow},   {"windows", Windows},
};

Fields Split(const std::string& line) {
    Fields fields(1);
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\t') {
            fields.emplace_back();
        } else if (line[i] == '\\' && i + 1 < line.size()) {
            const char c = line[++i];
            fields.back() += c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
        } else if (line[i] != '\r') {
            fields.back() += line[i];
        }
    }
    return fields;
}

std::string Obey(const std::string& line) {
    const Fields fields = Split(line);
    for (const auto& command : kCommands) {
        if (fields[0] != command.name) continue;
        Json answer;
        answer.Open('{');
        const char* problem = command.handle(fields, answer);
        if (!problem) return answer.Member("ok", true).Close('}').Text();
        return Json().Open('{').Member("ok", false).Member("error", problem).Close('}').Text();
    }
    return R"({"ok":false,"error":"unknown command"})";
}

}  // namespace

int main() {
    std::string line;
    for (int c = std::getchar(); c != EOF; c = std::getchar()) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        std::puts(Obey(line).c_str());
        std::fflush(stdout);
        line.clear();
    }
    return 0;
}
