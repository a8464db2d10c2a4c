# Warnings, sanitizers and runtime linkage that every target of this project is built with.

# A compiler cache is used where there is one; switching between trees and branches is then cheap.
if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(VANTOR_CCACHE ccache)
    if(VANTOR_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${VANTOR_CCACHE}")
    endif()
endif()

add_library(vantor_settings INTERFACE)

if(MSVC)
    target_compile_options(vantor_settings INTERFACE /W4 /WX /utf-8)
else()
    target_compile_options(vantor_settings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # This version sees an overlapping copy where a text is put before a string (GCC's bug 105651).
    target_compile_options(vantor_settings INTERFACE -Wno-restrict)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    # Nobody puts functions of their own in place of the library's, so it may call and inline them directly.
    target_compile_options(vantor_settings INTERFACE -fno-semantic-interposition)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(vantor_settings INTERFACE -Wreserved-identifier)
endif()

if(VANTOR_SANITIZE)
    set(VANTOR_SANITIZERS -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(vantor_settings INTERFACE ${VANTOR_SANITIZERS})
    target_link_options(vantor_settings INTERFACE ${VANTOR_SANITIZERS})
endif()

if(VANTOR_BUILD_FUZZ)
    # Lets the fuzzer see which code an input reaches; the targets themselves link -fsanitize=fuzzer.
    target_compile_options(vantor_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(MINGW)
    # A host copies one DLL and one program, never a compiler's runtime beside them. Exceptions pass between the
    # two all the same: types are matched by name and both take memory from the system's heap. Only
    # std::uncaught_exceptions counts in each module for itself; nothing here may depend on it.
    target_link_options(vantor_settings INTERFACE -static)
endif()
