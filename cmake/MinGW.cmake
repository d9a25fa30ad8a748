# Builds for Windows with Debian's MinGW-w64, in the variant that supports the threads of the standard library. Programs
# run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)

# CMake finds only what scripts/build-windows-dependencies built, and nothing of this system.
# Without "..", which a second configuration would write in another way, so that all is compiled again.
cmake_path(SET CMAKE_FIND_ROOT_PATH NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/windows-dependencies)
set(CMAKE_PREFIX_PATH /)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
