#include "install/ShellLink_win.h"

#include <objbase.h>
#include <shlobj.h>

#include "base/LLibrary_win.h"
#include "base/LTrace.h"

// COM is used by run-time linking alone: a program that is started in a folder of downloads must not import
// what a file there could stand in for.

namespace {

template <class Interface>
struct InterfaceTraits {
    using Type = Interface*;
    static Type None() { return nullptr; }
    static void Close(Type object) { object->Release(); }
};

// COM on this thread, with one object of the shell, which is released before its end.
class LinkObject {
public:
    LinkObject() : m_ole(LLoadSystemLibrary("ole32.dll")) {
        const auto begin = LFunctionOf<decltype(&CoInitialize)>(m_ole, "CoInitialize");
        const auto create = LFunctionOf<decltype(&CoCreateInstance)>(m_ole, "CoCreateInstance");
        m_end = LFunctionOf<decltype(&CoUninitialize)>(m_ole, "CoUninitialize");
        if (!begin || !create || !m_end || FAILED(begin(nullptr))) {
            m_end = nullptr;
            return;
        }
        void* made = nullptr;
        if (FAILED(create(kShellLinkClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IShellLinkA), &made)))
            return;
        m_link.Reset(static_cast<IShellLinkA*>(made));
        if (SUCCEEDED(m_link.Get()->QueryInterface(__uuidof(IPersistFile), &made)))
            m_file.Reset(static_cast<IPersistFile*>(made));
    }
    ~LinkObject() {
        m_file.Reset();
        m_link.Reset();
        if (m_end) m_end();
    }
    LinkObject(const LinkObject&) = delete;
    LinkObject& operator=(const LinkObject&) = delete;

    explicit operator bool() const { return static_cast<bool>(m_file); }
    IShellLinkA* Link() const { return m_link.Get(); }
    IPersistFile* File() const { return m_file.Get(); }

private:
    static constexpr GUID kShellLinkClass = {0x00021401, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

    LLibrary m_ole;
    decltype(&CoUninitialize) m_end = nullptr;
    LOwned<InterfaceTraits<IShellLinkA>> m_link;
    LOwned<InterfaceTraits<IPersistFile>> m_file;
};

struct WidePath {
    explicit WidePath(const LPath& path) {
        MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, text, kPathSize);
    }
    wchar_t text[kPathSize] = {};
};

}  // namespace

bool ShellLink::Write(const LPath& file) const {
    const LinkObject object;
    const bool isWritten = !file.Empty() && !target.Empty() && object &&
                           SUCCEEDED(object.Link()->SetPath(target.c_str())) &&
                           SUCCEEDED(object.Link()->SetWorkingDirectory(workingFolder.c_str())) &&
                           SUCCEEDED(object.Link()->SetDescription(description)) &&
                           (icon.Empty() || SUCCEEDED(object.Link()->SetIconLocation(icon.c_str(), 0))) &&
                           SUCCEEDED(object.File()->Save(WidePath(file).text, FALSE));
    if (!isWritten) LTrace("ShellLink::Write failed", file.View());
    return isWritten;
}

LPath ShellLink::TargetOf(const LPath& file) {
    const LinkObject object;
    char target[kPathSize] = {};
    const bool isRead = !file.Empty() && object &&
                        SUCCEEDED(object.File()->Load(WidePath(file).text, STGM_READ)) &&
                        object.Link()->GetPath(target, kPathSize, nullptr, 0) == S_OK;
    if (isRead) return LPath(target);
    LTrace("ShellLink::TargetOf failed", file.View());
    return {};
}
