#include <cstdlib>

#include "send/LFileTransferProtocol_win.h"
#include "tests/unit/TestKit.h"

static std::string Names(const LFileTransferProtocol& server, const std::string& pattern) {
    std::string names;
    for (LFileTransferProtocol::DirIterator it(server, pattern); it; it.Next())
        names += it.Entry().name + (it.Entry().isFolder ? "/ " : ":" + std::to_string(it.Entry().size) + " ");
    return names;
}

// tests/system/test_ftp.py names a server that holds the folder "in" with "a.dct" and "b.sta" of 24 bytes.
TEST(LFileTransferProtocol, ListsAFolder) {
    const char* const address = std::getenv("CORVANE_FTP_SERVER");
    if (address == nullptr) GTEST_SKIP() << "no server";
    LFileTransferProtocol server;
    const TraceLog trace;
    EXPECT_EQ(Names(server, {}), "");
    EXPECT_TRUE(
        TraceLog::Has("LFileTransferProtocol::DirIterator::DirIterator called when hlibWinInet not loaded"));
    ASSERT_TRUE(server.LogOnServer(address, "anonymous", std::getenv("CORVANE_FTP_PASSWORD")));
    EXPECT_EQ(Names(server, {}), "in/ ");
    ASSERT_TRUE(server.SetCurrentDirectory("in"));
    EXPECT_EQ(Names(server, "*.sta"), "b.sta:24 ");
}
