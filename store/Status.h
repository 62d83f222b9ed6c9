#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "base/LPath.h"
#include "store/CurrentUser.h"
#include "store/QueueAnswer.h"

// What a typist's program reports of the work on dictations: a file "s0000007.sta" for user 7
// (docs/file-formats.md). The texts go into the records of the dictations, as "sendstatus".
// Errors: silent for the user, traced. Thread: any one.
class Status {
public:
    static constexpr int64_t kMostBytes = int64_t{1} << 20;  // fifty thousand reports

    // user must outlive the object.
    Status(const CurrentUser& user, AskQueue isQueued);

    // The file of a user in a typist's folder.
    static LPath FileIn(std::string_view folder, uint32_t user);

    // Applies a status file to the sent dictations. A dictation that waits to be sent is left out: the report
    // is about an earlier sending, and a status of its own would say that it has arrived. True when the file
    // may be deleted; not when it, a record or the queue cannot be read, a record not be written, or when the
    // file has changed meanwhile.
    bool LoadStatus(const LPath& path);

private:
    using Texts = std::map<uint32_t, std::string>;  // by the number of the dictation
    bool Apply(const Texts& texts) const;

    const CurrentUser& m_user;
    AskQueue m_isQueued;
};
