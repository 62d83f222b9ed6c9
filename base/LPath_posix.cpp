#include "base/LPath.h"

// The lead bytes of code page 932; no native path of a test has such bytes.
bool LIsLeadByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}
