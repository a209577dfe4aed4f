# The command-line tool. It lies beside the library, which it loads as any host does; for a look into a
# file it uses the engine directly, and what a record is made of it knows from the component's declarations.
file(GLOB kvdb_tool_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/*.cpp)
if(kvdb_tool_sources)
    add_executable(kvdb_tool ${kvdb_tool_sources})
    target_link_libraries(kvdb_tool PRIVATE kvdb_gear kvdb_options ${CMAKE_DL_LIBS})
    if(WIN32)
        target_link_libraries(kvdb_tool PRIVATE ole32 oleaut32 uuid shell32)
        target_link_options(kvdb_tool PRIVATE -s)
    endif()
    set_target_properties(kvdb_tool PROPERTIES OUTPUT_NAME kvdb RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
    add_dependencies(kvdb_tool kvdb)
endif()
