#include <windows.h>

#include "tests/stubs/GTestNotification.h"

namespace testing::internal {

Notification::Notification() : m_event(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
Notification::~Notification() {
    CloseHandle(m_event);
}
void Notification::Notify() {
    SetEvent(m_event);
}
void Notification::WaitForNotification() {
    WaitForSingleObject(m_event, INFINITE);
}

}  // namespace testing::internal
