#pragma once

#include <windows.h>

// A block of memory inside the process that owns a window. Messages with structures, such as those of
// the list view, only work on memory of the window's own process.
class RemoteMemory {
public:
    RemoteMemory(HWND window, SIZE_T bytes) {
        DWORD processId = 0;
        GetWindowThreadProcessId(window, &processId);
        m_process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, processId);
        if (m_process) m_address = VirtualAllocEx(m_process, nullptr, bytes, MEM_COMMIT, PAGE_READWRITE);
    }
    RemoteMemory(const RemoteMemory&) = delete;
    RemoteMemory& operator=(const RemoteMemory&) = delete;
    ~RemoteMemory() {
        if (m_address) VirtualFreeEx(m_process, m_address, 0, MEM_RELEASE);
        if (m_process) CloseHandle(m_process);
    }
    bool IsError() const { return m_address == nullptr; }
    char* At(SIZE_T offset) const { return static_cast<char*>(m_address) + offset; }
    bool Put(SIZE_T offset, const void* from, SIZE_T bytes) {
        return WriteProcessMemory(m_process, At(offset), from, bytes, nullptr) != 0;
    }
    bool Take(SIZE_T offset, void* to, SIZE_T bytes) const {
        return ReadProcessMemory(m_process, At(offset), to, bytes, nullptr) != 0;
    }

private:
    HANDLE m_process = nullptr;
    void* m_address = nullptr;
};
