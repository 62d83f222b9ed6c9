#pragma once

#include <string_view>

enum class ProcessResult : int { Done = 0, Stopped = 1, Failed = 2 };  // the numbers are fixed

// Where a long operation reports to: the progress dialog, the send thread's range, a test's notebook.
// Thread: that of the operation.
class ProcessContext {
public:
    virtual ~ProcessContext() = default;
    // Tested between steps; true ends the operation with Stopped.
    virtual bool CancelRequested() = 0;
    // Fraction done, 0 to 1.
    virtual void SetProgress(double fraction) = 0;
    virtual void SetStatus(std::string_view text) = 0;
    // What the user must know about a failure.
    virtual void SetError(std::string_view text) = 0;
};

// A long operation.
class LProcess {
public:
    virtual ~LProcess() = default;
    virtual ProcessResult Process(ProcessContext& context) = 0;
};
