#include <windows.h>

#include "base/LLibrary_win.h"
#include "base/LTrace.h"

// The functions of Windows' libraries for sound, in place of the toolchain's imports: each is looked up
// when it is first called, in the library of the system folder. As imports these libraries would be loaded
// before our first line runs, and, as Windows does not hold them itself, from the program's folder first.
// That of a set-up program is full of downloads, any of which may have such a name.
// Imports remain ADVAPI32, COMDLG32, GDI32, KERNEL32, SHELL32 and USER32, which stand in Windows' list of
// known libraries, and two that these need in turn: COMCTL32, for which XP follows our manifest, by its
// bare name alone, and msvcrt, which starts the program.
//
// A machine without a library is one without a sound device or codec: each function fails, each count is 0.

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
// the stack. "bytes" are those of the arguments, which the function takes from the stack itself.
asm(R"(
    .text
LFindAndCall:
    call _LFindDelayedFunction
    addl $4, %esp
    jmp *%eax

.macro delayed library, bytes, function, others:vararg
    .text
    .globl _\function\()@\bytes
_\function\()@\bytes:
    jmp *__imp__\function\()@\bytes
1:  pushl $4f
    jmp LFindAndCall
2:  xorl %eax, %eax
    .if \bytes
    movb $6, %al        # MMSYSERR_NODRIVER
    .endif
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
    delayed \library, \bytes, \others
    .endif
.endm

    .section .rdata, "dr"
LMsacm32: .asciz "MSACM32.DLL"
LWinmm: .asciz "WINMM.DLL"

delayed LMsacm32, 4, acmFormatChooseA
delayed LMsacm32, 8, acmStreamClose
delayed LMsacm32, 12, acmFormatDetailsA, acmFormatTagDetailsA, acmStreamConvert, acmStreamPrepareHeader
delayed LMsacm32, 12, acmStreamUnprepareHeader
delayed LMsacm32, 8, acmStreamReset
delayed LMsacm32, 16, acmStreamSize
delayed LMsacm32, 20, acmFormatSuggest
delayed LMsacm32, 32, acmStreamOpen
delayed LWinmm, 0, timeGetTime, waveInGetNumDevs, waveOutGetNumDevs
delayed LWinmm, 4, waveInClose, waveInReset, waveInStart, waveInStop
delayed LWinmm, 4, waveOutClose, waveOutPause, waveOutReset, waveOutRestart
delayed LWinmm, 8, joyGetPos
delayed LWinmm, 12, PlaySoundA, joyGetDevCapsA
delayed LWinmm, 12, mixerGetControlDetailsA, mixerGetID, mixerGetLineControlsA, mixerGetLineInfoA
delayed LWinmm, 12, mixerSetControlDetails
delayed LWinmm, 12, waveInAddBuffer, waveInGetDevCapsA, waveInPrepareHeader, waveInUnprepareHeader
delayed LWinmm, 12, waveOutGetDevCapsA, waveOutGetPosition, waveOutPrepareHeader, waveOutUnprepareHeader
delayed LWinmm, 12, waveOutWrite
delayed LWinmm, 16, mciSendCommandA
delayed LWinmm, 24, waveInOpen, waveOutOpen
    .text
)");
