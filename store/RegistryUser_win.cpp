#include <windows.h>

#include "store/RegistryUser.h"

constexpr char kKey[] = "Software\\Mervald\\Corvane\\CurrentVersion";
constexpr char kValue[] = "CurrentUser";

bool ReadRegistryUser(uint32_t& user) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kKey, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return false;
    DWORD value = 0;
    DWORD size = sizeof value;
    DWORD type = 0;
    const LONG result = RegQueryValueExA(key, kValue, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
    RegCloseKey(key);
    if (result != ERROR_SUCCESS || type != REG_DWORD || size != sizeof value) return false;
    user = value;
    return true;
}

void WriteRegistryUser(uint32_t user) {
    HKEY key = nullptr;
    char noClass[] = "";
    if (RegCreateKeyExA(HKEY_CURRENT_USER, kKey, 0, noClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr) != ERROR_SUCCESS) {
        return;
    }
    const DWORD value = user;
    RegSetValueExA(key, kValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
    RegCloseKey(key);
}
