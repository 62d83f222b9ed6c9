#include "send/Email.h"

// A machine without a mail program.
bool Email::SendMAPI(std::string_view, std::string_view, std::string_view, const LPath&) {
    return false;
}
