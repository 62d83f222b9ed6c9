#pragma once

#include <windows.h>

#include <winternl.h>

#include <cstdint>
#include <vector>

#include "base/LOwned.h"

// What another process holds of the platform: kernel handles, drawing objects (GDI) and windows.
// Drawing objects are read from the table that the platform shares with the process; Wine's function for
// their number counts nothing. Both know the process by its environment block.
struct ProcessResources {
    uint32_t handles = 0;
    uint32_t drawing = 0;
    uint32_t windows = 0;
};

namespace resources {

struct ProcessTraits {
    using Type = HANDLE;
    static Type None() { return nullptr; }
    static void Close(Type h) { CloseHandle(h); }
};

// One entry of the platform's list of all handles.
struct HandleEntry {
    ULONG process;
    UCHAR type;
    UCHAR flags;
    USHORT value;
    void* object;
    ULONG access;
};

inline uint32_t CountHandles(DWORD process) {
    constexpr auto kAllHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    std::vector<ULONG> answer(1 << 18);
    const auto bytes = static_cast<ULONG>(answer.size() * sizeof(ULONG));
    if (NtQuerySystemInformation(kAllHandles, answer.data(), bytes, nullptr) != 0) return 0;
    const auto* entries = reinterpret_cast<const HandleEntry*>(&answer[1]);
    uint32_t count = 0;
    for (ULONG i = 0; i < answer[0]; ++i) count += entries[i].process == process ? 1 : 0;
    return count;
}

inline uint32_t CountDrawing(DWORD process) {
    constexpr size_t kTablePlace = 0x94;  // of its address in the environment block
    constexpr size_t kEntryBytes = 24, kTypePlace = 14, kEntries = 0x4000;
    const LOwned<ProcessTraits> open(
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, process));
    PROCESS_BASIC_INFORMATION basic = {};
    if (NtQueryInformationProcess(open.Get(), ProcessBasicInformation, &basic, sizeof basic, nullptr) != 0)
        return 0;
    const char* table = nullptr;
    std::vector<uint8_t> entries(kEntries * kEntryBytes);
    const auto* place = reinterpret_cast<const char*>(basic.PebBaseAddress) + kTablePlace;
    if (!ReadProcessMemory(open.Get(), place, &table, sizeof table, nullptr) ||
        !ReadProcessMemory(open.Get(), table, entries.data(), entries.size(), nullptr))
        return 0;
    uint32_t count = 0;
    for (size_t i = 0; i < kEntries; ++i) count += entries[i * kEntryBytes + kTypePlace] != 0 ? 1 : 0;
    return count;
}

struct WindowCount {
    DWORD process;
    uint32_t count = 0;
};

inline BOOL CALLBACK CountOne(HWND, LPARAM found) {
    ++reinterpret_cast<WindowCount*>(found)->count;
    return TRUE;
}

inline BOOL CALLBACK CountWithChildren(HWND window, LPARAM found) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != reinterpret_cast<WindowCount*>(found)->process) return TRUE;
    CountOne(window, found);
    EnumChildWindows(window, CountOne, found);
    return TRUE;
}

inline uint32_t CountWindows(DWORD process) {
    WindowCount found = {process};
    EnumWindows(CountWithChildren, reinterpret_cast<LPARAM>(&found));
    HWND hidden = nullptr;
    constexpr INT_PTR kMessageOnly = -3;  // the parent of windows that only take messages
    while ((hidden = FindWindowExA(reinterpret_cast<HWND>(kMessageOnly), hidden, nullptr, nullptr)) !=
           nullptr)
        CountWithChildren(hidden, reinterpret_cast<LPARAM>(&found));
    return found.count;
}

}  // namespace resources

inline ProcessResources ResourcesOf(DWORD process) {
    return {resources::CountHandles(process), resources::CountDrawing(process),
            resources::CountWindows(process)};
}
