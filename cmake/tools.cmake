# The command-line tool. It contains the component and sets its folder, so it loads no code from a studio. It reads
# files with the engine directly, and takes the layout of records from the component's declarations. CLI11 parses the
# command line; it is header-only, so the build machine's headers serve the Windows tool too. A link to
# them in a folder of their own keeps the machine's other headers from the cross compiler.
file(GLOB_RECURSE kvdb_tool_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/*.cpp)
if(WIN32)
    list(FILTER kvdb_tool_sources EXCLUDE REGEX "_posix\\.cpp$")
else()
    list(FILTER kvdb_tool_sources EXCLUDE REGEX "_win32\\.cpp$")
    # The export to SQLite uses SQLite itself.
    find_package(SQLite3 REQUIRED)
endif()
# The commands without the command line: tests call them in-process, on a disk that fails.
set(kvdb_tool_parts ${kvdb_tool_sources})
list(FILTER kvdb_tool_parts EXCLUDE REGEX
    "/tools/(commands/.*|documents/.*|main|commands|command_line|declaration|help)\\.cpp$")
find_path(KVDB_CLI11 CLI/CLI.hpp REQUIRED PATHS /usr/include /usr/local/include NO_CMAKE_FIND_ROOT_PATH)
kvdb_licence(CLI11.txt /usr/share/doc/libcli11-dev/copyright ${KVDB_CLI11}/../LICENSE)
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
    if(NOT WIN32)
        target_link_libraries(kvdb_tool_parts PUBLIC SQLite::SQLite3)
    endif()
    list(REMOVE_ITEM kvdb_tool_sources ${kvdb_tool_parts})
    add_executable(kvdb_tool ${kvdb_tool_sources})
    # Every command names its options and its work alike. Those that include the command line's library, which takes
    # longer than they do, are compiled together.
    set_target_properties(kvdb_tool PROPERTIES UNITY_BUILD_MODE GROUP)
    foreach(source command_line declaration help documents/outline)
        set_source_files_properties(${PROJECT_SOURCE_DIR}/tools/${source}.cpp PROPERTIES UNITY_GROUP command_line)
    endforeach()
    target_link_libraries(kvdb_tool PRIVATE kvdb_tool_parts)
    # The tool's file has the name of the component's target, and stands for it where "kvdb" is to be built.
    add_dependencies(kvdb_tool kvdb)
    target_include_directories(kvdb_tool SYSTEM PRIVATE ${PROJECT_BINARY_DIR}/cli11)
    target_compile_definitions(kvdb_tool PRIVATE KVDB_VERSION="${PROJECT_VERSION}")
    if(WIN32)
        target_sources(kvdb_tool PRIVATE ${PROJECT_SOURCE_DIR}/db/string_table.rc)
        target_link_libraries(kvdb_tool PRIVATE shell32)
        target_link_options(kvdb_tool PRIVATE -s)
        set_target_properties(kvdb_tool PROPERTIES CXX_LINKER_LAUNCHER "${kvdb_at_commit_time}")
    endif()
    set_target_properties(kvdb_tool PROPERTIES OUTPUT_NAME kvdb RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
endif()
