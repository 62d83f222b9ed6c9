#pragma once

#include <memory>

#include "base/LProcess.h"

// Runs a process on a thread of its own, for work that is done in calls which cannot be interrupted: those of
// foreign libraries, or reading from a network drive that has gone away. What the work reports is passed on
// to the context of the caller, whose messages run meanwhile.
// The work is left behind when it has not ended a second after a cancel, with the result Stopped. It then
// still runs, so it owns all that it uses, and takes back in its end what nobody wants any more.
// Thread: the one that calls Process; the work belongs to the other one until Process has returned, and for
//         good when it was left behind.
class LProcessApart final : public LProcess {
public:
    explicit LProcessApart(std::shared_ptr<LProcess> work) : m_work(std::move(work)) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    std::shared_ptr<LProcess> m_work;
};
