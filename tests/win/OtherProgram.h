#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>

#include "base/LPath.h"

// This program again, busy with a disabled test of its own and with the file that it is given, until it is
// killed.
class OtherProgram {
public:
    OtherProgram(const char* test, const LPath& file) {
        SetEnvironmentVariableA("CORVANE_TEST_FILE", file.c_str());
        char self[MAX_PATH] = {};
        GetModuleFileNameA(nullptr, self, sizeof self);
        std::string command =
            '"' + std::string(self) + "\" --gtest_also_run_disabled_tests --gtest_filter=*.DISABLED_" + test;
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        EXPECT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                                   nullptr, nullptr, &startup, &m_process));
    }
    ~OtherProgram() {
        Kill();
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }

    // What the other program was given.
    static LPath File() { return LPath(std::getenv("CORVANE_TEST_FILE")); }
    void Kill() {
        TerminateProcess(m_process.hProcess, 1);
        WaitForSingleObject(m_process.hProcess, 20000);
    }

private:
    PROCESS_INFORMATION m_process = {};
};
