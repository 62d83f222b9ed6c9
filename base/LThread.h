#pragma once

#include <cstdint>
#include <memory>

constexpr uint32_t kWaitForever = 0xFFFFFFFFu;

// An event that stays signalled until it is reset.
// Thread: any.
class LSignalObject {
public:
    LSignalObject();
    ~LSignalObject();
    LSignalObject(const LSignalObject&) = delete;
    LSignalObject& operator=(const LSignalObject&) = delete;

    void Signal();
    void Reset();
    bool IsSignalled() const { return Wait(0); }
    // True when signalled within the time.
    bool Wait(uint32_t timeoutMs) const;
    // 0: this one is signalled; 1: the other one is; -1: neither within the time.
    int WaitEither(const LSignalObject& other, uint32_t timeoutMs) const;
    // The platform's event, for devices that signal one; nullptr in the native test build.
    void* NativeHandle() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

// A lock between threads of this process; its own thread may enter again. Hold it through LLock, and briefly.
class LCriticalSection {
public:
    LCriticalSection();
    ~LCriticalSection();
    LCriticalSection(const LCriticalSection&) = delete;
    LCriticalSection& operator=(const LCriticalSection&) = delete;

    void Enter();
    void Leave();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

// Holds a critical section for the scope in which it stands.
class LLock {
public:
    explicit LLock(LCriticalSection& section) : m_section(section) { m_section.Enter(); }
    ~LLock() { m_section.Leave(); }
    LLock(const LLock&) = delete;
    LLock& operator=(const LLock&) = delete;

private:
    LCriticalSection& m_section;
};

// Priorities, as the platform numbers them.
constexpr int kThreadLowest = -2;
constexpr int kThreadNormal = 0;
constexpr int kThreadTimeCritical = 15;

// A worker thread with a stop event. A class derives from it and implements ThreadFunction, which returns
// soon after the stop event is signalled. The derived destructor must call Stop(), while the members that the
// thread uses still live.
// Units:  milliseconds; kWaitForever has no limit.
// Errors: Start returns false (traced) when the platform makes no thread.
// Thread: Start, Stop and the queries belong to the owner's thread; ThreadFunction runs on the worker.
class LThread {
public:
    LThread();
    virtual ~LThread();
    LThread(const LThread&) = delete;
    LThread& operator=(const LThread&) = delete;

    // Does nothing (and returns true) while the thread still runs; otherwise clears the stop event and starts
    // it.
    bool Start(int priority);
    void RequestStop() { m_stop.Signal(); }
    // Signals the stop event and waits; true when the thread has ended.
    bool Stop(uint32_t timeoutMs = kWaitForever);
    bool WaitForEnd(uint32_t timeoutMs);
    bool IsRunning() const;
    // Does nothing while no thread runs.
    void SetPriority(int priority);

    bool StopRequested() const { return m_stop.IsSignalled(); }

protected:
    virtual void ThreadFunction() = 0;
    // Changes the priority of the calling worker thread.
    static void SetOwnPriority(int priority);
    const LSignalObject& StopEvent() const { return m_stop; }

private:
    struct Impl;
    friend struct Impl;
    LSignalObject m_stop;
    std::unique_ptr<Impl> m_impl;
};
