# Compile options of all targets.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Binaries do not tell the folder that they were built in: those of one source are equal wherever it lies. Of two
# options that fit, the last one counts, and most build folders lie in the source.
foreach(place "${PROJECT_SOURCE_DIR}=." "${PROJECT_BINARY_DIR}=build")
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${place}>)
endforeach()

add_library(kvdb_options INTERFACE)
target_include_directories(kvdb_options INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_options(kvdb_options INTERFACE
    -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wconversion -Wno-sign-conversion)
# False positives of GCC 12: after inlining the standard library it warns of strings and vectors of half the address
# space. The sanitizer build finds real errors of this kind.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(kvdb_options INTERFACE -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow
        -Wno-stringop-overread)
endif()
# The platform's interfaces have no destructors, and GCC 12 reports the buffer of std::to_chars as uninitialized in a
# 32-bit build.
if(WIN32)
    # Programs find the compiler's runtime beside them.
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
    # The public header leaves these to its hosts.
    target_compile_definitions(kvdb_options INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX)
    target_compile_options(kvdb_options INTERFACE -Wno-non-virtual-dtor -Wno-maybe-uninitialized)
endif()
# Compiling several sources at once takes a third of the time: most of it goes into the headers that they share.
if(KVDB_UNITY)
    set(CMAKE_UNITY_BUILD ON)
    set(CMAKE_UNITY_BUILD_BATCH_SIZE 8)
    # A class that only one source knows is taken for one in a header.
    target_compile_options(kvdb_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()
if(KVDB_WERROR)
    target_compile_options(kvdb_options INTERFACE -Werror)
endif()
# Two copies of the library in one process are two components: they must not share symbols.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    target_compile_options(kvdb_options INTERFACE -fno-gnu-unique)
endif()
if(KVDB_SANITIZE)
    target_compile_options(kvdb_options INTERFACE
        -fsanitize=${KVDB_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    target_link_options(kvdb_options INTERFACE -fsanitize=${KVDB_SANITIZE})
endif()
