#include "send/Email.h"

#include <windows.h>

#include <mapi.h>

#include <cstring>
#include <string>

#include "base/LLibrary_win.h"
#include "base/LTrace.h"

// Simple MAPI, whose library belongs to the mail program that the user has chosen, and is loaded for each
// mail. The structures take pointers to text that is not const; the library only reads it.

namespace {

// Installed mail programs declare themselves there; loading a library that is not one's own would ask the
// user to choose a program.
bool HasMailProgram() {
    char value[16] = {};
    GetProfileStringA("Mail", "MAPI", "0", value, sizeof value);
    return std::strchr(value, '1') != nullptr;
}

}  // namespace

bool Email::SendMAPI(std::string_view address, std::string_view subject, std::string_view body,
                     const LPath& attachment) {
    if (!HasMailProgram()) {
        LTrace("Email::SendMAPI no mail program is declared");
        return false;
    }
    const LLibrary library = LLoadSystemLibrary("MAPI32.DLL");
    if (!library) {
        LTrace("Email::SendMAPI Unable to load MAPI32.DLL");
        return false;
    }
    const auto sendMail = LFunctionOf<LPMAPISENDMAIL>(library, "MAPISendMail");
    if (sendMail == nullptr) {
        LTrace("Email::SendMAPI Unable to load MAPISendMail from MAPI32.DLL");
        return false;
    }
    std::string name(address), fullAddress = MapiAddress(address), subjectText(subject), text(body);
    std::string path(attachment.View()), fileName(LFileNameOf(attachment.View()));

    MapiRecipDesc recipient{};
    recipient.ulRecipClass = MAPI_TO;
    recipient.lpszName = name.data();
    recipient.lpszAddress = fullAddress.data();
    MapiFileDesc file{};
    file.nPosition = static_cast<ULONG>(-1);
    file.lpszPathName = path.data();
    file.lpszFileName = fileName.data();
    MapiMessage message{};
    message.lpszSubject = subjectText.data();
    message.lpszNoteText = text.data();
    message.nRecipCount = 1;
    message.lpRecips = &recipient;
    message.nFileCount = attachment.Empty() ? 0 : 1;
    message.lpFiles = attachment.Empty() ? nullptr : &file;
    if (sendMail(0, 0, &message, 0, 0) == SUCCESS_SUCCESS) return true;
    LTrace("Email::SendMAPI MAPISendMail FAILED");
    return false;
}
