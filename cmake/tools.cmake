# The command-line tool. It contains the component and tells it the folder, so that it loads nothing from a studio; for
# a look into a file it uses the engine directly, and what a record is made of it knows from the component's
# declarations. The command line is parsed by CLI11, headers alone: those of the machine that builds serve the Windows
# tool too, and a folder of their own keeps the rest of its headers from that compiler.
file(GLOB_RECURSE kvdb_tool_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/*.cpp)
if(WIN32)
    list(FILTER kvdb_tool_sources EXCLUDE REGEX "_posix\\.cpp$")
else()
    list(FILTER kvdb_tool_sources EXCLUDE REGEX "_win32\\.cpp$")
    # Its export to SQLite is written by SQLite.
    find_package(SQLite3 REQUIRED)
endif()
# What the commands do, without the command line: tests use it in-process, beside a disk that fails.
set(kvdb_tool_parts ${kvdb_tool_sources})
list(FILTER kvdb_tool_parts EXCLUDE REGEX "/tools/(commands/.*|main|commands|command_line|declaration|help)\\.cpp$")
find_path(KVDB_CLI11 CLI/CLI.hpp REQUIRED PATHS /usr/include /usr/local/include NO_CMAKE_FIND_ROOT_PATH)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/cli11)
file(CREATE_LINK ${KVDB_CLI11}/CLI ${PROJECT_BINARY_DIR}/cli11/CLI SYMBOLIC)
# The page of its reports is made of files of their own, which the tool contains.
set(kvdb_page ${PROJECT_BINARY_DIR}/report_page.cpp)
file(GLOB kvdb_page_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/report/page/*)
add_custom_command(OUTPUT ${kvdb_page}
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${PROJECT_SOURCE_DIR}/tools/report/page -DOUTPUT=${kvdb_page}
        -P ${PROJECT_SOURCE_DIR}/cmake/embed_page.cmake
    DEPENDS ${kvdb_page_sources} ${PROJECT_SOURCE_DIR}/cmake/embed_page.cmake VERBATIM)
if(kvdb_tool_sources)
    add_library(kvdb_tool_parts STATIC ${kvdb_tool_parts} ${kvdb_page})
    target_link_libraries(kvdb_tool_parts PUBLIC kvdb_frame kvdb_options)
    list(REMOVE_ITEM kvdb_tool_sources ${kvdb_tool_parts})
    add_executable(kvdb_tool ${kvdb_tool_sources})
    target_link_libraries(kvdb_tool PRIVATE kvdb_tool_parts)
    target_include_directories(kvdb_tool SYSTEM PRIVATE ${PROJECT_BINARY_DIR}/cli11)
    target_compile_definitions(kvdb_tool PRIVATE KVDB_VERSION="${PROJECT_VERSION}")
    if(NOT WIN32)
        target_link_libraries(kvdb_tool PRIVATE SQLite::SQLite3)
    endif()
    if(WIN32)
        target_sources(kvdb_tool PRIVATE ${PROJECT_SOURCE_DIR}/db/string_table.rc)
        target_link_libraries(kvdb_tool PRIVATE shell32)
        target_link_options(kvdb_tool PRIVATE -s)
    endif()
    set_target_properties(kvdb_tool PROPERTIES OUTPUT_NAME kvdb RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
endif()
