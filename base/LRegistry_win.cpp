#include "base/LRegistry_win.h"

#include "base/LOwned.h"
#include "base/LPath.h"
#include "base/LSystemFunction_win.h"
#include "base/LText.h"
#include "base/LTrace.h"

namespace {

struct KeyTraits {
    using Type = HKEY;
    static Type None() { return nullptr; }
    static void Close(Type h) { RegCloseKey(h); }
};
using Key = LOwned<KeyTraits>;

Key Open(HKEY hive, const char* name, REGSAM access) {
    HKEY key = nullptr;
    return Key(RegOpenKeyExA(hive, name, 0, access, &key) == ERROR_SUCCESS ? key : nullptr);
}

bool IsMissing(HKEY hive, const char* name) {
    HKEY key = nullptr;
    const LONG result = RegOpenKeyExA(hive, name, 0, KEY_QUERY_VALUE, &key);
    Key(key).Reset();
    return result == ERROR_FILE_NOT_FOUND;
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
    const Key key = Open(hive, keyName, KEY_QUERY_VALUE);
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
    const Key key = Open(hive, keyName, KEY_QUERY_VALUE);
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

std::optional<LRegistryValue> LReadRegistryValue(HKEY hive, const char* keyName, const char* value) {
    constexpr DWORD kLongest = 4096;
    const Key key = Open(hive, keyName, KEY_QUERY_VALUE);
    LRegistryValue read;
    read.bytes.resize(kLongest);
    DWORD size = kLongest;
    if (!key ||
        RegQueryValueExA(key.Get(), value, nullptr, &read.type, read.bytes.data(), &size) != ERROR_SUCCESS)
        return std::nullopt;
    read.bytes.resize(size);
    return read;
}

bool LWriteRegistryValue(HKEY hive, const char* key, const char* value, const LRegistryValue& data) {
    return Write(hive, key, value, data.type, data.bytes.data(), data.bytes.size());
}

LReadResult LReadRegistryTexts(HKEY hive, const char* keyName, const wchar_t* value, std::wstring& texts) {
    constexpr DWORD kLongest = 1u << 20;
    using QueryValue = LONG(WINAPI*)(HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD);
    const auto query = LSystemFunction<QueryValue>("RegQueryValueExW", "advapi32.dll");
    texts.clear();
    if (IsMissing(hive, keyName)) return LReadResult::Absent;
    const Key key = Open(hive, keyName, KEY_QUERY_VALUE);
    DWORD type = 0;
    DWORD size = 0;
    if (!key || !query) return LReadResult::Unreadable;
    const LONG found = query(key.Get(), value, nullptr, &type, nullptr, &size);
    if (found == ERROR_FILE_NOT_FOUND) return LReadResult::Absent;
    const bool isText = type == REG_MULTI_SZ && size % sizeof(wchar_t) == 0;
    if (found != ERROR_SUCCESS || !isText || size > kLongest) return LReadResult::Unreadable;
    texts.resize(size / sizeof(wchar_t));
    DWORD read = size;
    const bool isWhole = query(key.Get(), value, nullptr, &type, reinterpret_cast<BYTE*>(texts.data()),
                               &read) == ERROR_SUCCESS &&
                         type == REG_MULTI_SZ && read == size;
    return isWhole ? LReadResult::Values : LReadResult::Unreadable;
}

bool LWriteRegistryTexts(HKEY hive, const char* keyName, const wchar_t* value, std::wstring_view texts) {
    using SetValue = LONG(WINAPI*)(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD);
    const auto set = LSystemFunction<SetValue>("RegSetValueExW", "advapi32.dll");
    const Key key = Open(hive, keyName, KEY_SET_VALUE);
    const size_t bytes = texts.size() * sizeof(wchar_t);
    return key && set &&
           set(key.Get(), value, 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(texts.data()),
               static_cast<DWORD>(bytes)) == ERROR_SUCCESS;
}

bool LDeleteRegistryValue(HKEY hive, const char* keyName, const char* value) {
    if (IsMissing(hive, keyName)) return true;
    const Key key = Open(hive, keyName, KEY_SET_VALUE);
    const LONG result = key ? RegDeleteValueA(key.Get(), value) : ERROR_ACCESS_DENIED;
    return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
}

bool LDeleteEmptyRegistryKey(HKEY hive, const char* name) {
    if (IsMissing(hive, name)) return true;
    DWORD keys = 0;
    DWORD values = 0;
    const Key key = Open(hive, name, KEY_QUERY_VALUE);
    if (!key || RegQueryInfoKeyA(key.Get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                                 nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        return false;
    // Asked first, since Windows 95 deletes the keys inside, too.
    return keys == 0 && values == 0 && RegDeleteKeyA(hive, name) == ERROR_SUCCESS;
}

bool LMayWriteRegistry(HKEY hive, std::string_view keyName) {
    std::string name(keyName);
    while (IsMissing(hive, name.c_str())) {
        const size_t end = name.rfind('\\');
        if (end == std::string::npos) return false;
        name.resize(end);
    }
    return static_cast<bool>(Open(hive, name.c_str(), KEY_SET_VALUE | KEY_CREATE_SUB_KEY));
}
