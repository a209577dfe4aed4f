# The installed tree: headers, library, tool, and the two ways to find them (CMake package, pkg-config).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Always P/lib, never a multi-architecture folder: hosts load the library by its path.
set(KVDB_INSTALL_LIBDIR lib)

# Nobody links the library, so no link library is installed.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kvdb DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
install(TARGETS kvdb
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${KVDB_INSTALL_LIBDIR})
if(TARGET kvdb_tool)
    install(TARGETS kvdb_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(kvdb_package_dir ${KVDB_INSTALL_LIBDIR}/cmake/kvdb)
if(WIN32)
    set(kvdb_installed_library ${CMAKE_INSTALL_BINDIR}/kvdb.dll)
else()
    set(kvdb_installed_library ${KVDB_INSTALL_LIBDIR}/libkvdb.so)
endif()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kvdb-config.cmake.in ${PROJECT_BINARY_DIR}/kvdb-config.cmake
    INSTALL_DESTINATION ${kvdb_package_dir} PATH_VARS kvdb_installed_library CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kvdb-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kvdb-config.cmake ${PROJECT_BINARY_DIR}/kvdb-config-version.cmake
    DESTINATION ${kvdb_package_dir})

# Where the library is, which is not the folder of this file on Windows.
get_filename_component(kvdb_pc_libdir ${kvdb_installed_library} DIRECTORY)
get_filename_component(kvdb_pc_file ${kvdb_installed_library} NAME)
configure_file(${PROJECT_SOURCE_DIR}/cmake/kvdb.pc.in ${PROJECT_BINARY_DIR}/kvdb.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kvdb.pc DESTINATION ${KVDB_INSTALL_LIBDIR}/pkgconfig)

# The documents, and for Unix what the tool makes of its own declarations: man page and completions.
if(NOT WIN32)
    install(FILES README.md CHANGELOG.md docs/owners.md docs/hosting.md docs/windows.md docs/reference.md
        docs/durability.md docs/differences.md docs/architecture.md docs/file-format.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
    install(DIRECTORY ${kvdb_licences} DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
if(TARGET kvdb_tool AND NOT WIN32)
    set(kvdb_made ${PROJECT_BINARY_DIR}/documents)
    set(kvdb_made_files ${kvdb_made}/kvdb.1 ${kvdb_made}/kvdb.bash ${kvdb_made}/_kvdb ${kvdb_made}/kvdb.fish)
    add_custom_command(OUTPUT ${kvdb_made_files}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${kvdb_made}
        COMMAND kvdb_tool help --man > ${kvdb_made}/kvdb.1
        COMMAND kvdb_tool help --completion bash > ${kvdb_made}/kvdb.bash
        COMMAND kvdb_tool help --completion zsh > ${kvdb_made}/_kvdb
        COMMAND kvdb_tool help --completion fish > ${kvdb_made}/kvdb.fish
        DEPENDS kvdb_tool VERBATIM)
    add_custom_target(kvdb_documents ALL DEPENDS ${kvdb_made_files})
    install(FILES ${kvdb_made}/kvdb.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES docs/kvdb-files.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
    install(FILES ${kvdb_made}/kvdb.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME kvdb)
    install(FILES ${kvdb_made}/_kvdb DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
    install(FILES ${kvdb_made}/kvdb.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()

# The content of the Windows package, all in one folder: the library finds the compiler's runtime beside it.
if(WIN32)
    install(FILES ${kvdb_runtime} DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY ${kvdb_licences} DESTINATION ${CMAKE_INSTALL_DATADIR}/kvdb)
    install(FILES $<TARGET_FILE:kvdb> $<TARGET_FILE:kvdb_tool> ${kvdb_tlb} ${PROJECT_BINARY_DIR}/kvdb.gates.manifest
        ${kvdb_runtime} LICENSE CHANGELOG.md docs/windows.md docs/hosting.md docs/reference.md docs/owners.md
        docs/durability.md DESTINATION . COMPONENT package EXCLUDE_FROM_ALL)
    install(FILES ${PROJECT_BINARY_DIR}/README-windows.txt DESTINATION . RENAME README.txt
        COMPONENT package EXCLUDE_FROM_ALL)
    install(DIRECTORY ${kvdb_licences} DESTINATION . COMPONENT package EXCLUDE_FROM_ALL)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kvdb DESTINATION include COMPONENT package EXCLUDE_FROM_ALL
        FILES_MATCHING PATTERN *.h)
endif()

# The tests of the installed tree install this build as its packager does.
if(TARGET frame_tests)
    target_compile_definitions(frame_tests PRIVATE
        KVDB_CXX="${CMAKE_CXX_COMPILER}"
        KVDB_CMAKE="${CMAKE_COMMAND}"
        KVDB_BUILD="${PROJECT_BINARY_DIR}"
        KVDB_INCLUDE="${PROJECT_SOURCE_DIR}/include"
        KVDB_TESTS="${PROJECT_SOURCE_DIR}/tests")
    if(KVDB_SANITIZE)
        target_compile_definitions(frame_tests PRIVATE KVDB_SANITIZED)
    endif()
    if(TARGET kvdb_tool)
        target_compile_definitions(frame_tests PRIVATE KVDB_TOOL)
        add_dependencies(frame_tests kvdb_tool)
        if(TARGET kvdb_documents)
            add_dependencies(frame_tests kvdb_documents)
        endif()
    endif()
endif()
