#include <string_view>

#include "send/SmtpReply.h"
#include "tests/fuzz/Fuzz.h"

// A reply means the same however its bytes come, its code is that of a line of it, and a reader never wants
// more than its limit. The first byte of the input tells the size of the pieces.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const size_t step = 1 + data[0] % 17;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    SmtpReply whole;
    SmtpReply pieces;
    const SmtpReply::State state = whole.Feed(bytes);
    for (size_t at = 0; at < bytes.size(); at += step) pieces.Feed(bytes.substr(at, step));
    Require(pieces.Feed({}) == state && pieces.Code() == whole.Code());
    Require(state != SmtpReply::State::Incomplete || bytes.size() <= SmtpReply::kLongest);
    Require(state == SmtpReply::State::Complete || whole.Code() == 0);
    Require(state != SmtpReply::State::Complete || bytes.find('\n') != std::string_view::npos);
    return 0;
}
