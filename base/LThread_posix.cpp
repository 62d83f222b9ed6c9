#include <pthread.h>
#include <ctime>

#include "base/LRunApart.h"
#include "base/LThread.h"
#include "base/LTrace.h"

namespace {

// The implementation for the native tests. One lock and one condition variable serve all events: waiting for
// two of them then needs no more than waiting for one. Every signal wakes every waiter, which tests can
// afford.
struct Monitor {
    Monitor() {
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&changed, &attributes);
        pthread_condattr_destroy(&attributes);
    }
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t changed;
};

Monitor& TheMonitor() {
    static Monitor monitor;
    return monitor;
}

timespec Deadline(uint32_t timeoutMs) {
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += timeoutMs / 1000;
    end.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1000000;
    if (end.tv_nsec >= 1000000000) {
        end.tv_nsec -= 1000000000;
        ++end.tv_sec;
    }
    return end;
}

// Waits until the condition holds; false when the time is up before.
template <class Condition>
bool WaitUntil(Condition condition, uint32_t timeoutMs) {
    Monitor& monitor = TheMonitor();
    const timespec end = Deadline(timeoutMs);
    pthread_mutex_lock(&monitor.mutex);
    bool met = condition();
    for (int result = 0; !met && result == 0; met = condition()) {
        result = timeoutMs == kWaitForever ? pthread_cond_wait(&monitor.changed, &monitor.mutex)
                                           : pthread_cond_timedwait(&monitor.changed, &monitor.mutex, &end);
    }
    pthread_mutex_unlock(&monitor.mutex);
    return met;
}

}  // namespace

struct LSignalObject::Impl {
    bool signalled = false;  // guarded by the monitor

    void Set(bool value) {
        Monitor& monitor = TheMonitor();
        pthread_mutex_lock(&monitor.mutex);
        signalled = value;
        pthread_cond_broadcast(&monitor.changed);
        pthread_mutex_unlock(&monitor.mutex);
    }
};

LSignalObject::LSignalObject() : m_impl(std::make_unique<Impl>()) {}
LSignalObject::~LSignalObject() = default;

void LSignalObject::Signal() {
    m_impl->Set(true);
}
void LSignalObject::Reset() {
    m_impl->Set(false);
}
bool LSignalObject::Wait(uint32_t timeoutMs) const {
    return WaitUntil([&] { return m_impl->signalled; }, timeoutMs);
}
int LSignalObject::WaitEither(const LSignalObject& other, uint32_t timeoutMs) const {
    int which = -1;
    WaitUntil(
        [&] {
            which = m_impl->signalled ? 0 : other.m_impl->signalled ? 1 : -1;
            return which >= 0;
        },
        timeoutMs);
    return which;
}
void* LSignalObject::NativeHandle() const {
    return nullptr;
}

struct LCriticalSection::Impl {
    pthread_mutex_t mutex;
};

LCriticalSection::LCriticalSection() : m_impl(std::make_unique<Impl>()) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m_impl->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}
LCriticalSection::~LCriticalSection() {
    pthread_mutex_destroy(&m_impl->mutex);
}
void LCriticalSection::Enter() {
    pthread_mutex_lock(&m_impl->mutex);
}
void LCriticalSection::Leave() {
    pthread_mutex_unlock(&m_impl->mutex);
}

struct LThread::Impl {
    pthread_t thread{};
    bool started = false;  // and not yet joined; the owner's thread only
    LSignalObject ended;

    static void* Run(void* argument) {
        LThread* self = static_cast<LThread*>(argument);
        self->ThreadFunction();
        self->m_impl->ended.Signal();
        return nullptr;
    }
};

LThread::LThread() : m_impl(std::make_unique<Impl>()) {}

LThread::~LThread() {
    if (IsRunning()) LTrace("LThread::~LThread thread still running");
    Stop();
}

bool LThread::Start(int) {
    if (IsRunning()) return true;
    WaitForEnd(kWaitForever);
    m_stop.Reset();
    m_impl->ended.Reset();
    m_impl->started = pthread_create(&m_impl->thread, nullptr, &Impl::Run, this) == 0;
    if (!m_impl->started) LTrace("LThread::Start unable to create thread");
    return m_impl->started;
}

bool LThread::Stop(uint32_t timeoutMs) {
    m_stop.Signal();
    return WaitForEnd(timeoutMs);
}

bool LThread::WaitForEnd(uint32_t timeoutMs) {
    if (!m_impl->started) return true;
    if (!m_impl->ended.Wait(timeoutMs)) return false;
    pthread_join(m_impl->thread, nullptr);
    m_impl->started = false;
    return true;
}

bool LThread::IsRunning() const {
    return m_impl->started && !m_impl->ended.IsSignalled();
}

void LThread::SetPriority(int) {}
void LThread::SetOwnPriority(int) {}

static void* RunApart(void* argument) {
    const std::unique_ptr<std::function<void()>> run(static_cast<std::function<void()>*>(argument));
    (*run)();
    return nullptr;
}

bool LRunApart(std::function<void()> run) {
    auto own = std::make_unique<std::function<void()>>(std::move(run));
    pthread_t thread{};
    if (pthread_create(&thread, nullptr, &RunApart, own.get()) != 0) {
        LTrace("LRunApart unable to create thread");
        return false;
    }
    static_cast<void>(own.release());  // the thread's now
    pthread_detach(thread);
    return true;
}
