#pragma once

#include "base/LProcess.h"

// One stage of a longer process: maps its progress of 0 to 1 onto a part of the whole's, and passes
// everything else through.
class SendStage : public ProcessContext {
public:
    // from and to: fractions of the whole, 0 to 1.
    SendStage(ProcessContext& whole, double from, double to) : m_whole(whole), m_from(from), m_to(to) {}

    bool CancelRequested() override { return m_whole.CancelRequested(); }
    void SetProgress(double fraction) override { m_whole.SetProgress(m_from + fraction * (m_to - m_from)); }
    void SetStatus(std::string_view text) override { m_whole.SetStatus(text); }
    void SetError(std::string_view text) override { m_whole.SetError(text); }

private:
    ProcessContext& m_whole;
    double m_from;
    double m_to;
};
