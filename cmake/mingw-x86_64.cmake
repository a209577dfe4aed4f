# Builds for 64-bit Windows on a Linux machine, with the threaded variant of MinGW-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
find_program(KVDB_WIDL x86_64-w64-mingw32-widl REQUIRED)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/run_wine64)

# Component and host share one unwinder, so that exceptions can pass between them; the C++ runtime is linked into every
# module.
set(kvdb_link_flags "-static-libstdc++ -shared-libgcc")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${kvdb_link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${kvdb_link_flags}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${kvdb_link_flags}")
