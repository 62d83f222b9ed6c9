#include <windows.h>

#include <mapi.h>

#include <cstdio>
#include <string_view>

// Appends what it is given to the file that the environment names, one field a line; takes every mail but
// those to an address that holds "refuse".
extern "C" __declspec(dllexport) ULONG WINAPI
    MAPISendMail(LHANDLE session, ULONG_PTR window, lpMapiMessage message, FLAGS flags, ULONG reserved) {
    char path[MAX_PATH] = {};
    GetEnvironmentVariableA("CORVANE_TEST_MAPI", path, sizeof path);
    std::FILE* const log = std::fopen(path, "ab");
    if (log == nullptr || message->nRecipCount != 1 || message->nFileCount != 1) return MAPI_E_FAILURE;
    const MapiRecipDesc& to = message->lpRecips[0];
    const MapiFileDesc& file = message->lpFiles[0];
    std::fprintf(log, "%lu %lu %lu %lu %lu\n", static_cast<ULONG>(session), static_cast<ULONG>(window), flags,
                 reserved, to.ulRecipClass);
    std::fprintf(log, "%s\n%s\n%s\n%ld\n%s\n%s\n", to.lpszName, to.lpszAddress, message->lpszSubject,
                 static_cast<long>(file.nPosition), file.lpszPathName, file.lpszFileName);
    std::fprintf(log, "%s\n\f\n", message->lpszNoteText);
    std::fclose(log);
    const bool isRefused = std::string_view(to.lpszAddress).find("refuse") != std::string_view::npos;
    return isRefused ? MAPI_E_FAILURE : SUCCESS_SUCCESS;
}
