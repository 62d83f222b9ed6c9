#include "base/LRegistry_win.h"
#include "store/RegistryUser.h"

constexpr char kKey[] = "Software\\Mervald\\Corvane\\CurrentVersion";
constexpr char kValue[] = "CurrentUser";

bool ReadRegistryUser(uint32_t& user) {
    const std::optional<uint32_t> stored = LReadRegistryNumber(HKEY_CURRENT_USER, kKey, kValue);
    if (stored) user = *stored;
    return stored.has_value();
}

void WriteRegistryUser(uint32_t user) {
    LWriteRegistryNumber(HKEY_CURRENT_USER, kKey, kValue, user);
}

void ForgetRegistryUser() {
    LDeleteRegistryValue(HKEY_CURRENT_USER, kKey, kValue);
}
