#include "base/LHostLookup.h"

#include "base/LRunApart.h"
#include "base/LSocket.h"
#include "base/LThread.h"

static constexpr size_t kLongestHost = 255;

struct LHostLookup::Search {
    std::string host;
    bool isFound = false;  // this and address are written before the event is signalled
    uint32_t address = 0;
    LSignalObject ended;
};

LHostLookup::LHostLookup(const std::string& host, Resolve resolve) : m_search(std::make_shared<Search>()) {
    m_search->host = host;
    const bool isName = !host.empty() && host.size() <= kLongestHost;
    const auto search = [own = m_search, resolve] {
        LSocket::Use sockets;  // the caller's may have ended meanwhile
        own->isFound = sockets.IsReady() && resolve(own->host, own->address);
        own->ended.Signal();
    };
    if (!isName || !LRunApart(search)) m_search->ended.Signal();
}

bool LHostLookup::WaitForEnd(uint32_t ms) const {
    return m_search->ended.Wait(ms);
}

bool LHostLookup::IsFound(uint32_t& address) const {
    if (!m_search->ended.IsSignalled() || !m_search->isFound) return false;
    address = m_search->address;
    return true;
}
