#include "hardware/DriverThread_win.h"

#include <windows.h>

#include <deque>
#include <utility>

#include "base/LRunApart.h"
#include "base/LThread.h"

// Owned by the thread and its owner alike.
struct DriverThread::Shared {
    LCriticalSection lock;
    std::deque<std::function<void()>> calls;  // under the lock
    bool isLeft = false;                      // under the lock: the owner is gone
    LSignalObject work, idle;

    // Empty when there is none: all have been carried out.
    std::function<void()> Next() {
        const LLock locked(lock);
        if (calls.empty()) {
            work.Reset();
            idle.Signal();
            return {};
        }
        std::function<void()> call = std::move(calls.front());
        calls.pop_front();
        return call;
    }
    bool IsLeft() {
        const LLock locked(lock);
        return isLeft && calls.empty();
    }
};

static void RunMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
}

void DriverThread::Run(Shared& shared) {
    const HANDLE work = shared.work.NativeHandle();
    for (;;) {
        while (const std::function<void()> call = shared.Next()) {
            call();
            RunMessages();
        }
        if (shared.IsLeft()) return;
        const auto wait = [&work] {
            return MsgWaitForMultipleObjects(1, &work, FALSE, INFINITE, QS_ALLINPUT);
        };
        DWORD waited = wait();
        for (; waited == WAIT_OBJECT_0 + 1; waited = wait()) RunMessages();
        if (waited != WAIT_OBJECT_0) return;
    }
}

DriverThread::DriverThread() : m_shared(std::make_shared<Shared>()) {
    LRunApart([shared = m_shared] { Run(*shared); });
}

DriverThread::~DriverThread() {
    const LLock locked(m_shared->lock);
    m_shared->isLeft = true;
    m_shared->work.Signal();
}

void DriverThread::Give(std::function<void()> call) {
    const LLock locked(m_shared->lock);
    m_shared->calls.push_back(std::move(call));
    m_shared->idle.Reset();
    m_shared->work.Signal();
}

bool DriverThread::Wait(uint32_t ms) const {
    return m_shared->idle.Wait(ms);
}
