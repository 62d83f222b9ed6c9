#pragma once

// The test framework's own notification needs a library thread model that this toolchain leaves out, so the
// Windows test builds include this ahead of everything. It does nothing: only the framework's threads would
// use it, and these tests start their own.
namespace testing::internal {

struct Notification {
    void Notify() {}
    void WaitForNotification() {}
};

}  // namespace testing::internal
