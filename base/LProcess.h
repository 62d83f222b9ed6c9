#pragma once

#include <string_view>

enum class ProcessResult : int { Done = 0, Stopped = 1, Failed = 2 };  // the numbers are fixed

// The listener of a long operation: the progress dialog, the send thread's share of a queue entry, or a
// test's recorder. The operation reports to it and asks it whether to go on, and never learns which one it
// is.
// Thread: that of the operation.
class ProcessContext {
public:
    virtual ~ProcessContext() = default;
    // Tested between steps; true ends the operation with Stopped.
    virtual bool CancelRequested() = 0;
    // Fraction done, 0 to 1.
    virtual void SetProgress(double fraction) = 0;
    virtual void SetStatus(std::string_view text) = 0;
    // The title of the window that shows all this, where there is one and the operation has several.
    virtual void SetTitle(std::string_view) {}
    // The text that tells the user about a failure.
    virtual void SetError(std::string_view text) = 0;
};

// A long operation that reports to a context. It runs on the thread that calls Process, to its end.
class LProcess {
public:
    virtual ~LProcess() = default;
    virtual ProcessResult Process(ProcessContext& context) = 0;
};
