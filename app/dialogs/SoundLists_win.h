#pragma once

#include <windows.h>

#include <cstdint>

// Lists of sound devices on settings pages. Each item carries the value of its setting; a stored device or
// line that is not there is shown all the same.
// Thread: the window thread.
void FillOutputDevices(HWND list, int32_t stored);

// The list of recording devices and that of their lines. When another device is chosen the lines are listed
// anew, since those of different devices have nothing in common.
class InputLineList {
public:
    // AsChosen begins with "Automatic". ForPortable selects the line itself that would be chosen for a
    // portable recorder.
    enum class Lines { AsChosen, ForPortable };
    explicit InputLineList(Lines lines = Lines::AsChosen) : m_kind(lines) {}

    void Fill(HWND devices, HWND lines, int32_t device, int32_t line);
    // Called after each change by the user.
    void Follow();
    // The device whose lines are listed.
    int32_t Device() const { return m_device; }

private:
    void FillLines(int32_t selected);

    Lines m_kind;
    HWND m_devices = nullptr, m_lines = nullptr;
    int32_t m_device = 0;
};
