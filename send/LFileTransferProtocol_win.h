#pragma once

// The platform's macros of these names would rename functions of the class.
#undef DeleteFile
#undef SetCurrentDirectory

#include <string>

#include "base/LFile.h"
#include "base/LOwned.h"
#include "send/FtpConnection.h"

// The traits of a handle of the internet library.
struct InternetTraits {
    using Type = void*;
    static Type None() { return nullptr; }
    static void Close(Type handle);
};

// FTP through the platform's internet library, "WinINet.DLL", which is loaded on first use and stays loaded.
// It is no part of the oldest platform, so each function is looked up by name where it is needed. Transfers
// are binary and passive, to port 21, without a proxy. A server that does not answer is given up after a
// minute, by libraries that know such limits.
// Thread: one at a time for all objects together.
class LFileTransferProtocol final : public FtpConnection {
public:
    class DirIterator;

    ~LFileTransferProtocol() override { Disconnect(); }

    // Opens the session, and dials where the machine is offline; true also when dialling fails.
    bool Connect() override;
    bool LogOnServer(const std::string& server, const std::string& user,
                     const std::string& password) override;
    bool SetCurrentDirectory(const std::string& path) override;
    bool PutFile(const LPath& local, const std::string& remote) override;
    bool GetFile(const std::string& remote, const LPath& local, int64_t mostBytes) override;
    bool DeleteFile(const std::string& remote) override;
    void LogOff() { m_connection.Reset(); }
    // Hangs up when it dialled.
    void Disconnect() override;

private:
    void DialIfOffline();

    LOwned<InternetTraits> m_session;
    LOwned<InternetTraits> m_connection;
    bool m_hasDialled = false;
};

// Lists a folder of the server that is logged on to. A connection has one listing at a time, and it ends
// before the connection does.
// Errors: a listing that fails is an empty one.
class LFileTransferProtocol::DirIterator {
public:
    // pattern: "*.sta", with or without a folder; empty for everything in the current one.
    DirIterator(const LFileTransferProtocol& server, const std::string& pattern);

    // Whether there is an entry.
    explicit operator bool() const { return static_cast<bool>(m_find); }
    const LFolderEntry& Entry() const { return m_entry; }
    void Next();

private:
    LOwned<InternetTraits> m_find;
    LFolderEntry m_entry;
};
