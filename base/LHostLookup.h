#pragma once

#include <cstdint>
#include <memory>
#include <string>

// The search for a host's address, on a thread of its own: the platform's call cannot be interrupted and may
// take a minute, or until somebody has answered its dial-up box. A lookup that is destroyed before its end
// leaves the thread behind, which ends with the call and touches nothing but what it owns.
// Units:  address in network byte order, waits in milliseconds.
// Thread: one at a time.
class LHostLookup {
public:
    using Resolve = bool (*)(const std::string& host, uint32_t& address);

    // Begins. A name without or with more than 255 characters is not found.
    LHostLookup(const std::string& host, Resolve resolve);

    // True when the search has ended within the time.
    bool WaitForEnd(uint32_t ms) const;
    // After its end: whether the host was found.
    bool IsFound(uint32_t& address) const;

private:
    struct Search;
    std::shared_ptr<Search> m_search;
};
