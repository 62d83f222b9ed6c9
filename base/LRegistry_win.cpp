#include "base/LRegistry_win.h"

#include "base/LOwned.h"
#include "base/LPath.h"
#include "base/LText.h"
#include "base/LTrace.h"

namespace {

struct KeyTraits {
    using Type = HKEY;
    static Type None() { return nullptr; }
    static void Close(Type h) { RegCloseKey(h); }
};
using Key = LOwned<KeyTraits>;

Key OpenForReading(HKEY hive, const char* name) {
    HKEY key = nullptr;
    return Key(RegOpenKeyExA(hive, name, 0, KEY_QUERY_VALUE, &key) == ERROR_SUCCESS ? key : nullptr);
}

bool Write(HKEY hive, const char* name, const char* value, DWORD type, const void* data, size_t size) {
    HKEY opened = nullptr;
    char noClass[] = "";
    const LONG created = RegCreateKeyExA(hive, name, 0, noClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                                         nullptr, &opened, nullptr);
    const Key key(created == ERROR_SUCCESS ? opened : nullptr);
    if (key && RegSetValueExA(key.Get(), value, 0, type, static_cast<const BYTE*>(data),
                              static_cast<DWORD>(size)) == ERROR_SUCCESS)
        return true;
    LTrace("LRegistry::Write unable to store value:", value);
    return false;
}

}  // namespace

std::string LReadRegistryText(HKEY hive, const char* keyName, const char* value) {
    const Key key = OpenForReading(hive, keyName);
    char text[kPathSize] = {};
    DWORD type = 0;
    DWORD size = sizeof text;
    if (!key ||
        RegQueryValueExA(key.Get(), value, nullptr, &type, reinterpret_cast<BYTE*>(text), &size) !=
            ERROR_SUCCESS ||
        type != REG_SZ || size > sizeof text)
        return {};
    return std::string(LBeforeZero({text, size}));
}

std::optional<uint32_t> LReadRegistryNumber(HKEY hive, const char* keyName, const char* value) {
    const Key key = OpenForReading(hive, keyName);
    DWORD number = 0;
    DWORD type = 0;
    DWORD size = sizeof number;
    if (!key ||
        RegQueryValueExA(key.Get(), value, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size) !=
            ERROR_SUCCESS ||
        type != REG_DWORD || size != sizeof number)
        return std::nullopt;
    return number;
}

bool LWriteRegistryText(HKEY hive, const char* key, const char* value, std::string_view text) {
    const std::string terminated(text);
    return Write(hive, key, value, REG_SZ, terminated.c_str(), terminated.size() + 1);
}

bool LWriteRegistryNumber(HKEY hive, const char* key, const char* value, uint32_t number) {
    return Write(hive, key, value, REG_DWORD, &number, sizeof number);
}
