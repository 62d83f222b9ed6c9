#include "store/RegistryUser.h"

#include <optional>

static std::optional<uint32_t> s_user;

bool ReadRegistryUser(uint32_t& user) {
    if (s_user) user = *s_user;
    return s_user.has_value();
}

void WriteRegistryUser(uint32_t user) {
    s_user = user;
}
