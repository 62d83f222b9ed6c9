#include "base/LHostLookup.h"

#include <gtest/gtest.h>

#include "base/LSocket.h"

// The platform's own sockets and resolver, which are looked up at run time.
TEST(HostLookup, AsksThePlatformOnAThreadOfItsOwn) {
    const LSocket::Use sockets;
    ASSERT_TRUE(sockets.IsReady());
    EXPECT_NE(LSocket::LocalHostName(), "");
    uint32_t address = 0;
    const LHostLookup here("localhost", &LSocket::Resolve), nowhere("host.invalid", &LSocket::Resolve);
    ASSERT_TRUE(here.WaitForEnd(20000) && nowhere.WaitForEnd(20000));
    EXPECT_TRUE(here.IsFound(address));
    EXPECT_EQ(address, 0x0100007Fu);
    EXPECT_FALSE(nowhere.IsFound(address));
}
