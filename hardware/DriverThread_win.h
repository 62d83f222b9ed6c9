#pragma once

#include <cstdint>
#include <functional>
#include <memory>

// A thread for the calls into a driver or an add-on library, any of which may take long or never return. It
// carries them out one after the other and runs messages between them, since drivers make windows and timers
// of their own. A call owns all that it uses: nobody is there any more when it returns late.
// Errors: without a thread (traced) nothing that is given is carried out.
// Thread: the window thread.
class DriverThread {
public:
    DriverThread();
    // Does not wait. What was given before is still carried out, if the driver lets it.
    ~DriverThread();
    DriverThread(const DriverThread&) = delete;
    DriverThread& operator=(const DriverThread&) = delete;

    void Give(std::function<void()> call);
    // True when all that was given has been carried out, within the time.
    bool Wait(uint32_t ms) const;

private:
    struct Shared;
    static void Run(Shared& shared);

    std::shared_ptr<Shared> m_shared;
};
