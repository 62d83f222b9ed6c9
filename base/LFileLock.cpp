#include "base/LFileLock.h"

#include "base/LThread.h"
#include "base/LTime.h"
#include "base/LTrace.h"

static constexpr uint32_t kRetryMs = 10;

LFileLock::Result LFileLock::TryTake(const LPath& path) {
    if (m_file.IsOpen()) return Result::Taken;
    m_file = LFile(path, LFile::Open::Alone);
    if (m_file.IsOpen()) return Result::Taken;
    if (LFile::Exists(path)) return Result::Held;
    LTrace("LFileLock::TryTake unable to create file", path.View());
    return Result::Failed;
}

LFileLock::Result LFileLock::Take(const LPath& path, uint32_t waitMs) {
    const uint32_t begun = LTickMs();
    Result result = TryTake(path);
    while (result == Result::Held && LTickMs() - begun < waitMs) {
        LSignalObject().Wait(kRetryMs);
        result = TryTake(path);
    }
    return result;
}
