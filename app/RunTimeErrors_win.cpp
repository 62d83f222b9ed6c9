#include <windows.h>

#include <cstdlib>
#include <memory>
#include <new>

// Nothing in Corvane throws or catches. Where the C++ library would throw, since memory has run out or a size
// is beyond all limits, the program ends at once. It would end without this file, too, but only by way of all
// that exceptions consist of, down to the text of what was thrown: a sixth of the executable.
// When the linker finds some of these twice, new code needs one more of their kind, which then belongs here.

namespace std {

void __throw_bad_alloc() {
    std::abort();
}
void __throw_bad_array_new_length() {
    std::abort();
}
void __throw_bad_function_call() {
    std::abort();
}
void __throw_length_error(const char*) {
    std::abort();
}
void __throw_logic_error(const char*) {
    std::abort();
}
void __throw_out_of_range_fmt(const char*, ...) {
    std::abort();
}

// Asked by shared pointers of objects that were made with run-time type information. None is.
bool _Sp_make_shared_tag::_S_eq(const type_info&) noexcept {
    return false;
}

}  // namespace std

void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
    return std::malloc(bytes != 0 ? bytes : 1);
}

void* operator new(size_t bytes) {
    if (void* memory = ::operator new(bytes, std::nothrow)) return memory;
    std::abort();
}

// The guards of local statics; the library's own do not work on Windows 95. The first byte of a guard says
// that the static is there, its second half is held by the thread that makes it.
extern "C" int __cxa_guard_acquire(LONG* guard) {
    while (InterlockedExchange(guard + 1, 1) != 0) Sleep(1);
    if (*reinterpret_cast<volatile char*>(guard) == 0) return 1;
    InterlockedExchange(guard + 1, 0);
    return 0;
}
extern "C" void __cxa_guard_release(LONG* guard) {
    *reinterpret_cast<volatile char*>(guard) = 1;
    InterlockedExchange(guard + 1, 0);
}
