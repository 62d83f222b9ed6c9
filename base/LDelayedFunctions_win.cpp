#include <windows.h>

#include "base/LLibrary_win.h"
#include "base/LTrace.h"

// Functions of Windows' libraries that take the place of the toolchain's imports: each is looked up when it
// is first called, in the library of the system folder. As imports these libraries would be loaded before our
// first line runs, and, unless Windows holds them itself, from the program's folder first. That of a set-up
// program is full of downloads, any of which may have such a name. COMDLG32 and SHELL32 are held by each
// version, but what they import in turn is not: WINSPOOL.DRV and SHLWAPI, with others in their train.
// Imports remain ADVAPI32, GDI32, KERNEL32 and USER32, without which no window is shown; COMCTL32, for which
// XP follows our manifest, by its bare name alone; and msvcrt, which starts the program.
//
// Without its library each function fails, and each count is 0: there is no sound device and no codec, a
// dialog was cancelled.

namespace {

struct DelayedFunction {
    FARPROC* place;       // what the callers jump through
    const char* library;  // its file name
    const char* name;
    FARPROC absent;  // takes the same arguments
};

}  // namespace

// Looks a function up and puts it where its callers jump through. Several threads may do so at a time: each
// stores the same. The library stays loaded.
extern "C" [[gnu::used]] FARPROC LFindDelayedFunction(const DelayedFunction* function) {
    LLibrary library = LLoadSystemLibrary(function->library);
    const auto found = library ? LFunctionOf<FARPROC>(library, function->name) : nullptr;
    if (found != nullptr)
        library.Release();
    else
        LTrace("LFindDelayedFunction not found", function->name);
    return *function->place = found != nullptr ? found : function->absent;
}

// Callers jump through __imp__, which leads to 1 at first: that leaves the table's row and their arguments on
// the stack. "bytes" are those of the arguments, which the function takes from the stack itself; "absent" is
// what it returns where it is missing.
asm(R"(
    .text
LFindAndCall:
    call _LFindDelayedFunction
    addl $4, %esp
    jmp *%eax

.macro delayed library, bytes, absent, function, others:vararg
    .text
    .globl _\function\()@\bytes
_\function\()@\bytes:
    jmp *__imp__\function\()@\bytes
1:  pushl $4f
    jmp LFindAndCall
2:  movl $\absent, %eax
    ret $\bytes
    .globl __imp__\function\()@\bytes
    .data
    .p2align 2
__imp__\function\()@\bytes:
    .long 1b
    .section .rdata, "dr"
    .p2align 2
4:  .long __imp__\function\()@\bytes, \library, 3f, 2b
3:  .asciz "\function"
    .ifnb \others
    delayed \library, \bytes, \absent, \others
    .endif
.endm

    .set NODRIVER, 6    # MMSYSERR_NODRIVER
    .set E_FAIL, 0x80004005

    .section .rdata, "dr"
LComdlg32: .asciz "COMDLG32.DLL"
LMsacm32: .asciz "MSACM32.DLL"
LShell32: .asciz "SHELL32.DLL"
LWinmm: .asciz "WINMM.DLL"

delayed LComdlg32, 0, 0, CommDlgExtendedError
delayed LComdlg32, 4, 0, GetOpenFileNameA
delayed LMsacm32, 4, NODRIVER, acmFormatChooseA
delayed LMsacm32, 8, NODRIVER, acmStreamClose
delayed LMsacm32, 12, NODRIVER, acmFormatDetailsA, acmFormatTagDetailsA, acmStreamConvert, acmStreamPrepareHeader
delayed LMsacm32, 12, NODRIVER, acmStreamUnprepareHeader
delayed LMsacm32, 8, NODRIVER, acmStreamReset
delayed LMsacm32, 16, NODRIVER, acmStreamSize
delayed LMsacm32, 20, NODRIVER, acmFormatSuggest
delayed LMsacm32, 32, NODRIVER, acmStreamOpen
delayed LShell32, 4, 0, SHBrowseForFolderA
delayed LShell32, 4, E_FAIL, SHGetMalloc
delayed LShell32, 8, 0, SHGetPathFromIDListA
delayed LShell32, 24, 0, ShellExecuteA
delayed LWinmm, 0, 0, timeGetTime, waveInGetNumDevs, waveOutGetNumDevs
delayed LWinmm, 4, NODRIVER, waveInClose, waveInReset, waveInStart, waveInStop
delayed LWinmm, 4, NODRIVER, waveOutClose, waveOutPause, waveOutReset, waveOutRestart
delayed LWinmm, 8, NODRIVER, joyGetPos
delayed LWinmm, 12, NODRIVER, PlaySoundA, joyGetDevCapsA
delayed LWinmm, 12, NODRIVER, mixerGetControlDetailsA, mixerGetID, mixerGetLineControlsA, mixerGetLineInfoA
delayed LWinmm, 12, NODRIVER, mixerSetControlDetails
delayed LWinmm, 12, NODRIVER, waveInAddBuffer, waveInGetDevCapsA, waveInPrepareHeader, waveInUnprepareHeader
delayed LWinmm, 12, NODRIVER, waveOutGetDevCapsA, waveOutGetPosition, waveOutPrepareHeader, waveOutUnprepareHeader
delayed LWinmm, 12, NODRIVER, waveOutWrite
delayed LWinmm, 16, NODRIVER, mciSendCommandA
delayed LWinmm, 24, NODRIVER, waveInOpen, waveOutOpen
    .text
)");
