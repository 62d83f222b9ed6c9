# Compile options of all our code, and the one way to declare a module.
add_library(corvane_options INTERFACE)
target_include_directories(corvane_options INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR}/generated)
target_compile_options(corvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Werror
    -fno-exceptions -fno-rtti)

if(WIN32)
    # The oldest platform; what is newer is looked up at run time.
    target_compile_definitions(corvane_options INTERFACE
        WINVER=0x0400 _WIN32_WINNT=0x0400 _WIN32_IE=0x0300 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
    # Without exceptions nothing unwinds the stack.
    target_compile_options(corvane_options INTERFACE -march=i586 -mtune=generic -ffunction-sections
        -fno-asynchronous-unwind-tables)
    target_link_options(corvane_options INTERFACE -Wl,--gc-sections)
endif()
if(CORVANE_SANITIZE)
    # Without RTTI the vptr check would fail on the first virtual call.
    add_compile_options(-fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(CORVANE_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# corvane_module(<name> PORTABLE <files> WINDOWS <files> NATIVE <files> USES <modules> LIBS <platform libraries>)
# PORTABLE files are built everywhere, WINDOWS files only for the product, NATIVE files only for the
# native test build.
function(corvane_module name)
    cmake_parse_arguments(M "" "" "PORTABLE;WINDOWS;NATIVE;USES;LIBS" ${ARGN})
    set(sources ${M_PORTABLE})
    if(WIN32)
        list(APPEND sources ${M_WINDOWS})
    else()
        list(APPEND sources ${M_NATIVE})
    endif()
    if(NOT sources) # all of it is Windows
        add_library(corvane_${name} INTERFACE)
        return()
    endif()
    add_library(corvane_${name} STATIC ${sources})
    target_link_libraries(corvane_${name} PUBLIC corvane_options)
    foreach(used IN LISTS M_USES)
        target_link_libraries(corvane_${name} PUBLIC corvane_${used})
    endforeach()
    if(WIN32)
        target_link_libraries(corvane_${name} PUBLIC ${M_LIBS})
        if(NOT name MATCHES "^(audio|send)") # the others wait for the disk, the user or the platform
            target_compile_options(corvane_${name} PRIVATE -Os)
        endif()
    else()
        find_package(Threads REQUIRED)
        target_link_libraries(corvane_${name} PUBLIC Threads::Threads)
    endif()
endfunction()
