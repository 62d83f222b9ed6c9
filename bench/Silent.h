#pragma once

#include "base/LProcess.h"

// A context that ignores all reports, for measuring a process by itself.
class Silent final : public ProcessContext {
public:
    bool CancelRequested() override { return false; }
    void SetProgress(double) override {}
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view) override {}
};
