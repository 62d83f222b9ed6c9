#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "base/LMemoryFile.h"
#include "base/LProcess.h"
#include "base/LTrace.h"
#include "tests/unit/TempFolder.h"

using Bytes = std::vector<uint8_t>;

inline Bytes Text(std::string_view text) {
    return {text.begin(), text.end()};
}

inline Bytes FileBytes(const LMemoryFile& file) {
    return {file.View().begin(), file.View().end()};
}

// Bytes from hexadecimal text; blanks are for the reader.
inline Bytes Hex(std::string_view text) {
    Bytes bytes;
    int digits = 0, value = 0;
    for (char c : text) {
        if (c == ' ') continue;
        value = value * 16 + (c <= '9' ? c - '0' : (c | 32) - 'a' + 10);
        if (++digits % 2 == 0) bytes.push_back(static_cast<uint8_t>(value)), value = 0;
    }
    return bytes;
}

// The trace lines of one scope.
class TraceLog {
public:
    TraceLog() : m_before(LSetTraceSink(Take)) { s_lines.clear(); }
    ~TraceLog() { LSetTraceSink(m_before); }
    static bool Has(std::string_view line) { return std::ranges::find(s_lines, line) != s_lines.end(); }
    static std::string All() {
        std::string all;
        for (const std::string& line : s_lines) all += line + "\n";
        return all;
    }

private:
    static void Take(std::string_view line, std::string_view) { s_lines.emplace_back(line); }
    static inline std::vector<std::string> s_lines;
    LTraceSink m_before;
};

// Notes what a process reports; asks it to stop after a number of tests, or once its progress has got so far.
struct NotingContext : ProcessContext {
    bool CancelRequested() override {
        return cancelAfter-- == 0 || (progress.empty() ? 0 : progress.back()) >= cancelAt;
    }
    void SetProgress(double fraction) override { progress.push_back(fraction); }
    void SetStatus(std::string_view text) override { status = text; }
    void SetError(std::string_view text) override { errors.emplace_back(text); }

    int cancelAfter = -1;
    double cancelAt = 2.0;
    std::vector<double> progress;
    std::string status;
    std::vector<std::string> errors;
};
