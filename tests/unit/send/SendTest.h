#pragma once

#include <string>
#include <vector>

#include "base/LProcess.h"
#include "base/LStream.h"
#include "tests/unit/audio/AudioTest.h"

// Notes what a process reports; asks it to stop once its progress has reached cancelAt.
class NotedContext final : public ProcessContext {
public:
    bool CancelRequested() override {
        return !progress.empty() ? progress.back() >= cancelAt : cancelAt <= 0;
    }
    void SetProgress(double fraction) override { progress.push_back(fraction); }
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view text) override { errors.emplace_back(text); }

    double cancelAt = 2.0;
    std::vector<double> progress;
    std::vector<std::string> errors;
};

// A file that yields fewer bytes than its size promises.
class EndingFile final : public LReadStream {
public:
    EndingFile(const Bytes& bytes, size_t readable)
        : m_size(bytes.size()), m_file(std::span(bytes).first(readable)) {}
    size_t Read(std::span<uint8_t> buffer) override { return m_file.Read(buffer); }
    bool Seek(int64_t position) override { return m_file.Seek(position); }
    int64_t Position() const override { return m_file.Position(); }
    int64_t Size() const override { return static_cast<int64_t>(m_size); }

private:
    size_t m_size;
    LMemoryFile m_file;
};
