#pragma once

#include <memory>

#include "hardware/DriverThread_win.h"
#include "hardware/HardwareControl.h"

// Reads the pedals for a window, which no driver can make wait: the port is opened, read and closed on a
// thread of its own (DriverThread). A thread that hangs in its driver is left behind, and closes the port if
// it ever comes back.
// Thread: the window thread.
class PedalReader {
public:
    static constexpr uint32_t kFirstPollMs = 500;  // after Open
    static constexpr uint32_t kPollMs = 50;
    static constexpr uint32_t kQuietMs = 2000;  // while the port cannot be read
    static constexpr uint32_t kHungMs = 3000;   // without an answer: nobody knows what is pressed

    ~PedalReader() { Close(); }

    // Opens another port in place of the one that is open; its first reading says whether it could be opened.
    void Open(int32_t port);
    // Waits for a tenth of a second at most, so that somebody else can open the port then.
    void Close();
    // What is pressed now; of a port that is slow, what was pressed before.
    PedalReading Poll();
    // Devices were plugged in or out.
    void Renew();
    static uint32_t NextPollMs(const PedalReading& reading) { return reading.isQuiet ? kQuietMs : kPollMs; }

private:
    struct Shared;

    std::unique_ptr<DriverThread> m_thread;
    std::shared_ptr<Shared> m_shared;
    uint32_t m_askedMs = 0;
};
