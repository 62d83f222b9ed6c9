# The toolchain of the Windows benches and of what they are measured against (tools/bench-peers): the product's, but
# with the threads of the C++ library, which Google Benchmark needs. Both variants are the same compiler.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-i686.cmake)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
get_filename_component(CORVANE_ROOT ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
list(APPEND CMAKE_FIND_ROOT_PATH ${CORVANE_ROOT}/build/peers-win32)
