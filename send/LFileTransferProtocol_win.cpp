#include <windows.h>

#include <wininet.h>

#include "base/LLibrary_win.h"
#include "base/LSystemFunction_win.h"
#include "base/LTrace.h"
#include "send/LFileTransferProtocol_win.h"

namespace {

constexpr char kLibrary[] = "WinINet.DLL";
constexpr char kAgent[] = "LLIBFTP";

// The library's own limits are several minutes, in which the queue would stand still.
constexpr struct {
    DWORD option;
    DWORD value;
} kLimits[] = {
    {INTERNET_OPTION_CONNECT_TIMEOUT, 30000},      {INTERNET_OPTION_CONNECT_RETRIES, 1},
    {INTERNET_OPTION_CONTROL_SEND_TIMEOUT, 60000}, {INTERNET_OPTION_CONTROL_RECEIVE_TIMEOUT, 60000},
    {INTERNET_OPTION_DATA_SEND_TIMEOUT, 60000},    {INTERNET_OPTION_DATA_RECEIVE_TIMEOUT, 60000},
};

HMODULE s_library = nullptr;  // never freed

bool Load() {
    if (s_library == nullptr) s_library = LLoadSystemLibrary(kLibrary).Release();
    return s_library != nullptr;
}

// Calls a function of the library. One that this version of the library lacks fails, which is 0 for all.
template <class Function, class... Arguments>
auto Call(const char* name, Arguments... arguments) {
    const auto function = LSystemFunction<Function>(name, kLibrary);
    return function == nullptr ? decltype(function(arguments...)){} : function(arguments...);
}

constexpr uint64_t Combine(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

LFolderEntry ToEntry(const WIN32_FIND_DATAA& found) {
    LFolderEntry entry;
    entry.name = found.cFileName;
    entry.isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    entry.size = static_cast<int64_t>(Combine(found.nFileSizeHigh, found.nFileSizeLow));
    entry.created = Combine(found.ftCreationTime.dwHighDateTime, found.ftCreationTime.dwLowDateTime);
    entry.written = Combine(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime);
    return entry;
}

}  // namespace

std::unique_ptr<FtpConnection> MakeFtpConnection() {
    return std::make_unique<LFileTransferProtocol>();
}

void InternetTraits::Close(Type handle) {
    Call<decltype(&InternetCloseHandle)>("InternetCloseHandle", handle);
}

bool LFileTransferProtocol::Connect() {
    if (m_session) return true;
    if (!Load()) {
        LTrace("LFileTransferProtocol::Connect() LoadLibrary WinINet.DLL failed");
        return false;
    }
    m_session.Reset(Call<decltype(&InternetOpenA)>("InternetOpenA", kAgent, INTERNET_OPEN_TYPE_DIRECT,
                                                   nullptr, nullptr, 0));
    if (!m_session) {
        LTrace("LFileTransferProtocol::Connect() Internet Open Failed");
        return false;
    }
    for (auto [option, value] : kLimits)
        Call<decltype(&InternetSetOptionA)>("InternetSetOptionA", m_session.Get(), option, &value,
                                            DWORD{sizeof value});
    DialIfOffline();
    return true;
}

void LFileTransferProtocol::DialIfOffline() {
    DWORD state = 0;
    const bool isConnected =
        Call<decltype(&InternetGetConnectedState)>("InternetGetConnectedState", &state, 0) != FALSE;
    if (isConnected && (state & INTERNET_CONNECTION_OFFLINE) == 0) return;
    m_hasDialled = Call<decltype(&InternetAutodial)>(
                       "InternetAutodial",
                       INTERNET_AUTODIAL_FORCE_ONLINE | INTERNET_AUTODIAL_FORCE_UNATTENDED, nullptr) != FALSE;
}

void LFileTransferProtocol::Disconnect() {
    LogOff();
    m_session.Reset();
    if (!m_hasDialled) return;
    m_hasDialled = false;
    Call<decltype(&InternetAutodialHangup)>("InternetAutodialHangup", 0);
}

bool LFileTransferProtocol::LogOnServer(const std::string& server, const std::string& user,
                                        const std::string& password) {
    if (!Connect()) return false;
    LogOff();
    const bool isGuest = user.empty();
    m_connection.Reset(Call<decltype(&InternetConnectA)>(
        "InternetConnectA", m_session.Get(), server.c_str(), INTERNET_PORT{INTERNET_DEFAULT_FTP_PORT},
        isGuest ? nullptr : user.c_str(), isGuest ? nullptr : password.c_str(), INTERNET_SERVICE_FTP,
        INTERNET_FLAG_PASSIVE, 0));
    if (m_connection) return true;
    LTrace("LFileTransferProtocol::LogOnServer InternetConnect FAILED", server);
    return false;
}

bool LFileTransferProtocol::SetCurrentDirectory(const std::string& path) {
    if (Call<decltype(&FtpSetCurrentDirectoryA)>("FtpSetCurrentDirectoryA", m_connection.Get(), path.c_str()))
        return true;
    LTrace("LFileTransferProtocol::SetCurrentDirectory failed", path);
    return false;
}

bool LFileTransferProtocol::PutFile(const LPath& local, const std::string& remote) {
    if (Call<decltype(&FtpPutFileA)>("FtpPutFileA", m_connection.Get(), local.c_str(), remote.c_str(),
                                     FTP_TRANSFER_TYPE_BINARY, 0))
        return true;
    LTrace("LFileTransferProtocol::PutFile failed", remote);
    return false;
}

bool LFileTransferProtocol::GetFile(const std::string& remote, const LPath& local, int64_t mostBytes) {
    // The library fetches whatever comes; its listing at least tells honest sizes.
    if (const DirIterator listed(*this, remote); listed && listed.Entry().size > mostBytes) {
        LTrace("LFileTransferProtocol::GetFile file too long", remote);
        return false;
    }
    if (Call<decltype(&FtpGetFileA)>("FtpGetFileA", m_connection.Get(), remote.c_str(), local.c_str(), FALSE,
                                     FILE_ATTRIBUTE_NORMAL, FTP_TRANSFER_TYPE_BINARY | INTERNET_FLAG_RELOAD,
                                     0))
        return true;
    LTrace("LFileTransferProtocol::GetFile failed", remote);
    return false;
}

bool LFileTransferProtocol::DeleteFile(const std::string& remote) {
    if (Call<decltype(&FtpDeleteFileA)>("FtpDeleteFileA", m_connection.Get(), remote.c_str())) return true;
    LTrace("LFileTransferProtocol::DeleteFile failed", remote);
    return false;
}

LFileTransferProtocol::DirIterator::DirIterator(const LFileTransferProtocol& server,
                                                const std::string& pattern) {
    if (s_library == nullptr) {
        LTrace("LFileTransferProtocol::DirIterator::DirIterator called when hlibWinInet not loaded");
        return;
    }
    WIN32_FIND_DATAA found{};
    m_find.Reset(Call<decltype(&FtpFindFirstFileA)>("FtpFindFirstFileA", server.m_connection.Get(),
                                                    pattern.empty() ? nullptr : pattern.c_str(), &found,
                                                    INTERNET_FLAG_RELOAD, 0));
    if (m_find) m_entry = ToEntry(found);
}

void LFileTransferProtocol::DirIterator::Next() {
    WIN32_FIND_DATAA found{};
    if (Call<decltype(&InternetFindNextFileA)>("InternetFindNextFileA", m_find.Get(), &found))
        m_entry = ToEntry(found);
    else
        m_find.Reset();
}
