# The command-line tool. It contains the component and tells it the folder, so that it loads nothing from a studio; for
# a look into a file it uses the engine directly, and what a record is made of it knows from the component's
# declarations.
file(GLOB kvdb_rescue_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/rescue/*.cpp)
file(GLOB kvdb_tool_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/*.cpp)
if(kvdb_tool_sources)
    # Keeping and rescuing, without the command line: tests use it beside a disk that fails.
    add_library(kvdb_rescue STATIC ${kvdb_rescue_sources} ${PROJECT_SOURCE_DIR}/tools/open_file.cpp
        ${PROJECT_SOURCE_DIR}/tools/value_text.cpp)
    target_link_libraries(kvdb_rescue PUBLIC kvdb_frame kvdb_options)
    list(REMOVE_ITEM kvdb_tool_sources ${PROJECT_SOURCE_DIR}/tools/open_file.cpp ${PROJECT_SOURCE_DIR}/tools/value_text.cpp)
    add_executable(kvdb_tool ${kvdb_tool_sources})
    target_link_libraries(kvdb_tool PRIVATE kvdb_rescue kvdb_options)
    if(WIN32)
        target_sources(kvdb_tool PRIVATE ${PROJECT_SOURCE_DIR}/db/string_table.rc)
        target_link_libraries(kvdb_tool PRIVATE shell32)
        target_link_options(kvdb_tool PRIVATE -s)
    endif()
    set_target_properties(kvdb_tool PROPERTIES OUTPUT_NAME kvdb RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
endif()
