#pragma once

#include "base/LPath.h"
#include "base/LProcess.h"

// Copies a file with the status text "Please wait...". The copy is made under a temporary name beside its
// target and takes its name when it is complete and flushed, so nobody ever finds half a file under the
// target's name.
class LProcessCopyFile final : public LProcess {
public:
    LProcessCopyFile(const LPath& from, const LPath& to) : m_from(from), m_to(to) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    LPath m_from;
    LPath m_to;
};
