#pragma once

// The test framework's own notification needs a library thread model that this toolchain leaves out, so the
// Windows test builds, which include this ahead of everything, give it one that rests on the platform's
// event.
namespace testing::internal {

class Notification {
public:
    Notification();
    ~Notification();
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;
    void Notify();
    void WaitForNotification();

private:
    void* m_event;
};

}  // namespace testing::internal
