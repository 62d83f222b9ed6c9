#pragma once

#include <string>
#include <string_view>

#include "base/LPath.h"

// Mail through the mail program of the platform. The native test build has a substitute for it
// (tests/stubs/Email.h).
// Thread: the send thread.
namespace Email {

// Hands a mail with one recipient and one attachment over, without a dialog; false (traced) when there is no
// mail program or it refuses. The call cannot be interrupted, and a mail program may read the attachment
// later. An empty path: no attachment.
bool SendMAPI(std::string_view address, std::string_view subject, std::string_view body,
              const LPath& attachment);

// An address as mail programs want it: with "SMTP:" before it, unless it names a kind itself.
std::string MapiAddress(std::string_view address);

}  // namespace Email
