#include <cstdlib>

#include "send/LFileTransferProtocol_win.h"
#include "tests/unit/TestKit.h"

namespace {

std::string Names(const LFileTransferProtocol& server, const std::string& pattern) {
    std::string names;
    for (LFileTransferProtocol::DirIterator it(server, pattern); it; it.Next())
        names += it.Entry().name + (it.Entry().isFolder ? "/ " : ":" + std::to_string(it.Entry().size) + " ");
    return names;
}

// tests/system/test_ftp.py names a server with an empty folder "in".
TEST(LFileTransferProtocol, ListsFetchesAndDeletesWhatItPutThere) {
    const char* const address = std::getenv("CORVANE_FTP_SERVER");
    if (address == nullptr) GTEST_SKIP() << "no server";
    const TempFolder temp;
    WriteFileText(temp.File("a"), "one\ntwo\r\nthree\xFF");
    LFileTransferProtocol server;
    {
        const TraceLog trace;
        EXPECT_EQ(Names(server, {}), "");
        EXPECT_TRUE(TraceLog::Has(
            "LFileTransferProtocol::DirIterator::DirIterator called when hlibWinInet not loaded"));
    }
    const char* const password = std::getenv("CORVANE_FTP_PASSWORD");
    EXPECT_FALSE(server.LogOnServer(address, "anonymous", "wrong"));
    ASSERT_TRUE(server.LogOnServer(address, "anonymous", password));
    EXPECT_EQ(Names(server, {}), "in/ ");
    EXPECT_FALSE(server.SetCurrentDirectory("out"));
    ASSERT_TRUE(server.SetCurrentDirectory("in"));
    EXPECT_TRUE(server.PutFile(temp.File("a"), "b.dct") && server.PutFile(temp.File("a"), "c.sta"));
    EXPECT_EQ(Names(server, "*.sta"), "c.sta:15 ");
    WriteFileText(temp.File("d"), "a longer file that is there already");
    EXPECT_TRUE(server.GetFile("b.dct", temp.File("d")));
    EXPECT_EQ(ReadFileText(temp.File("d")), ReadFileText(temp.File("a")));
    EXPECT_TRUE(server.DeleteFile("b.dct") && server.DeleteFile("c.sta"));
    EXPECT_FALSE(server.GetFile("b.dct", temp.File("d")) || server.DeleteFile("b.dct"));
    // A second log-on leaves the first.
    ASSERT_TRUE(server.LogOnServer(address, "anonymous", password));
    EXPECT_EQ(Names(server, {}), "in/ ");
    server.Disconnect();
    EXPECT_FALSE(server.PutFile(temp.File("a"), "b.dct"));
}

}  // namespace
