#pragma once

#include "base/LProcess.h"

// Nobody watches the process that is measured.
class Silent final : public ProcessContext {
public:
    bool CancelRequested() override { return false; }
    void SetProgress(double) override {}
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view) override {}
};
