#include <windows.h>

#include "base/LProfile.h"
#include "base/LProfileText.h"

// An empty path would make the platform use a file of its own.

std::string LProfile::Read(const LPath& file, std::string_view section, std::string_view key,
                           std::string_view defaultText) {
    std::string fallback(defaultText.substr(0, kMaxText));
    if (file.Empty()) return fallback;
    char text[kMaxText + 1] = {};
    const DWORD length = GetPrivateProfileStringA(std::string(section).c_str(), std::string(key).c_str(),
                                                  fallback.c_str(), text, sizeof text, file.c_str());
    return std::string(text, length);
}

bool LProfile::Write(const LPath& file, std::string_view section, std::string_view key,
                     std::string_view value) {
    return !file.Empty() &&
           WritePrivateProfileStringA(std::string(section).c_str(), std::string(key).c_str(),
                                      std::string(LProfileSafe(value)).c_str(), file.c_str());
}

bool LProfile::Delete(const LPath& file, std::string_view section, std::string_view key) {
    return !file.Empty() && WritePrivateProfileStringA(std::string(section).c_str(), std::string(key).c_str(),
                                                       nullptr, file.c_str());
}

void LProfile::Flush(const LPath& file) {
    // Answers false although it does what it should, so the answer is of no use.
    if (!file.Empty()) WritePrivateProfileStringA(nullptr, nullptr, nullptr, file.c_str());
}

LProfileSection::LProfileSection(const LPath& file, std::string_view section) {
    constexpr DWORD kLargest = 32767;  // the most that Windows 95 and 98 return
    if (file.Empty()) return;
    for (DWORD size = 2048;; size = size < kLargest / 4 ? size * 4 : kLargest) {
        m_lines.resize(size);
        const DWORD length =
            GetPrivateProfileSectionA(std::string(section).c_str(), m_lines.data(), size, file.c_str());
        // Two less than the size means that not all of it found room.
        if (length + 2 < size || size == kLargest) {
            m_lines.resize(length);
            return;
        }
    }
}
