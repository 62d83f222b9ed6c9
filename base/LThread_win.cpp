#include <process.h>
#include <windows.h>

#include "base/LOwned.h"
#include "base/LRunApart.h"
#include "base/LThread.h"
#include "base/LTrace.h"

namespace {

struct HandleTraits {
    using Type = HANDLE;
    static Type None() { return nullptr; }
    static void Close(Type h) { CloseHandle(h); }
};
using OwnedHandle = LOwned<HandleTraits>;

}  // namespace

struct LSignalObject::Impl {
    OwnedHandle event{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
};

LSignalObject::LSignalObject() : m_impl(std::make_unique<Impl>()) {}
LSignalObject::~LSignalObject() = default;

void LSignalObject::Signal() {
    SetEvent(m_impl->event.Get());
}
void LSignalObject::Reset() {
    ResetEvent(m_impl->event.Get());
}
bool LSignalObject::Wait(uint32_t timeoutMs) const {
    return WaitForSingleObject(m_impl->event.Get(), timeoutMs) == WAIT_OBJECT_0;
}
int LSignalObject::WaitEither(const LSignalObject& other, uint32_t timeoutMs) const {
    const HANDLE events[] = {m_impl->event.Get(), other.m_impl->event.Get()};
    const DWORD result = WaitForMultipleObjects(2, events, FALSE, timeoutMs);
    return result == WAIT_OBJECT_0 ? 0 : result == WAIT_OBJECT_0 + 1 ? 1 : -1;
}
void* LSignalObject::NativeHandle() const {
    return m_impl->event.Get();
}

struct LCriticalSection::Impl {
    CRITICAL_SECTION section;
};

LCriticalSection::LCriticalSection() : m_impl(std::make_unique<Impl>()) {
    InitializeCriticalSection(&m_impl->section);
}
LCriticalSection::~LCriticalSection() {
    DeleteCriticalSection(&m_impl->section);
}
void LCriticalSection::Enter() {
    EnterCriticalSection(&m_impl->section);
}
void LCriticalSection::Leave() {
    LeaveCriticalSection(&m_impl->section);
}

struct LThread::Impl {
    OwnedHandle thread;

    static unsigned __stdcall Run(void* self) {
        static_cast<LThread*>(self)->ThreadFunction();
        return 0;
    }
};

LThread::LThread() : m_impl(std::make_unique<Impl>()) {}

LThread::~LThread() {
    if (!IsRunning()) return;
    LTrace("LThread::~LThread thread still running");
    Stop();
}

bool LThread::Start(int priority) {
    if (IsRunning()) return true;
    m_impl->thread.Reset();
    m_stop.Reset();
    unsigned id = 0;  // unused, but Windows 95 requires the place
    const uintptr_t thread = _beginthreadex(nullptr, 0, &Impl::Run, this, CREATE_SUSPENDED, &id);
    if (thread == 0) {
        LTrace("LThread::Start unable to create thread");
        return false;
    }
    m_impl->thread.Reset(reinterpret_cast<HANDLE>(thread));
    SetThreadPriority(m_impl->thread.Get(), priority);
    ResumeThread(m_impl->thread.Get());
    return true;
}

bool LThread::Stop(uint32_t timeoutMs) {
    m_stop.Signal();
    return WaitForEnd(timeoutMs);
}

bool LThread::WaitForEnd(uint32_t timeoutMs) {
    return !m_impl->thread || WaitForSingleObject(m_impl->thread.Get(), timeoutMs) == WAIT_OBJECT_0;
}

bool LThread::IsRunning() const {
    return m_impl->thread && WaitForSingleObject(m_impl->thread.Get(), 0) == WAIT_TIMEOUT;
}

void LThread::SetPriority(int priority) {
    if (m_impl->thread) SetThreadPriority(m_impl->thread.Get(), priority);
}

void LThread::SetOwnPriority(int priority) {
    SetThreadPriority(GetCurrentThread(), priority);
}

static unsigned __stdcall RunApart(void* argument) {
    const std::unique_ptr<std::function<void()>> run(static_cast<std::function<void()>*>(argument));
    (*run)();
    return 0;
}

bool LRunApart(std::function<void()> run) {
    auto own = std::make_unique<std::function<void()>>(std::move(run));
    unsigned id = 0;  // unused, but Windows 95 requires the place
    const uintptr_t thread = _beginthreadex(nullptr, 0, &RunApart, own.get(), 0, &id);
    if (thread == 0) {
        LTrace("LRunApart unable to create thread");
        return false;
    }
    static_cast<void>(own.release());  // the thread's now
    CloseHandle(reinterpret_cast<HANDLE>(thread));
    return true;
}
