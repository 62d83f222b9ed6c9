#pragma once

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <cstdint>
#include <vector>

// What another process holds of the platform: kernel handles, drawing objects (GDI) and windows.
struct ProcessResources {
    uint32_t handles = 0;
    uint32_t drawing = 0;
    uint32_t windows = 0;
};

namespace resources {

inline uint32_t CountHandles(DWORD process) {
    std::vector<ULONG> answer(1 << 18);
    const auto bytes = static_cast<ULONG>(answer.size() * sizeof(ULONG));
    if (NtQuerySystemInformation(SystemHandleInformation, answer.data(), bytes, nullptr) != 0) return 0;
    const auto* entries = reinterpret_cast<const SYSTEM_HANDLE_ENTRY*>(&answer[1]);
    return static_cast<uint32_t>(std::count_if(entries, entries + answer[0],
                                               [=](const auto& entry) { return entry.OwnerPid == process; }));
}

// From the table that the platform shares with the process, at whose environment block its address stands:
// Wine's function for their number counts nothing.
inline uint32_t CountDrawing(HANDLE process) {
    constexpr size_t kTablePlace = 0x94, kEntryBytes = 24, kTypePlace = 14, kEntries = 0x4000;
    PROCESS_BASIC_INFORMATION basic = {};
    NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof basic, nullptr);
    const char* table = reinterpret_cast<const char*>(basic.PebBaseAddress) + kTablePlace;
    std::vector<uint8_t> entries(kEntries * kEntryBytes);
    if (!ReadProcessMemory(process, table, &table, sizeof table, nullptr) ||
        !ReadProcessMemory(process, table, entries.data(), entries.size(), nullptr))
        return 0;
    uint32_t count = 0;
    for (size_t type = kTypePlace; type < entries.size(); type += kEntryBytes) count += entries[type] != 0;
    return count;
}

inline BOOL CALLBACK CountOne(HWND, LPARAM count) {
    ++*reinterpret_cast<uint32_t*>(count);
    return TRUE;
}

// With their controls, also those that only take messages.
inline uint32_t CountWindows(DWORD process) {
    uint32_t count = 0;
    for (const INT_PTR parent : {0, -3}) {
        HWND window = nullptr;
        while ((window = FindWindowExA(reinterpret_cast<HWND>(parent), window, nullptr, nullptr)) !=
               nullptr) {
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner != process) continue;
            ++count;
            EnumChildWindows(window, CountOne, reinterpret_cast<LPARAM>(&count));
        }
    }
    return count;
}

}  // namespace resources

inline ProcessResources ResourcesOf(DWORD process) {
    const HANDLE open = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, process);
    const uint32_t drawing = resources::CountDrawing(open);
    CloseHandle(open);
    return {resources::CountHandles(process), drawing, resources::CountWindows(process)};
}
