# The component: every layer in one shared library that exports only its four entry points.
add_library(kvdb SHARED ${PROJECT_SOURCE_DIR}/frame/library_entry.cpp)
target_link_libraries(kvdb PRIVATE kvdb_frame)
set_target_properties(kvdb PROPERTIES
    OUTPUT_NAME kvdb
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}
    RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
if(WIN32)
    include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
else()
    target_link_options(kvdb PRIVATE -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map -Wl,-Bsymbolic)
    set_target_properties(kvdb PROPERTIES LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
    if(NOT KVDB_SANITIZE)
        target_link_options(kvdb PRIVATE -Wl,-z,defs)
    endif()
endif()
