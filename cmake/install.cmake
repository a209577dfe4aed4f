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

configure_file(${PROJECT_SOURCE_DIR}/cmake/kvdb.pc.in ${PROJECT_BINARY_DIR}/kvdb.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kvdb.pc DESTINATION ${KVDB_INSTALL_LIBDIR}/pkgconfig)

# The content of the Windows package, all in one folder: the library finds the compiler's runtime beside it.
if(WIN32)
    install(FILES ${kvdb_runtime} DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES $<TARGET_FILE:kvdb> $<TARGET_FILE:kvdb_tool> ${kvdb_tlb} ${PROJECT_BINARY_DIR}/kvdb.gates.manifest
        ${kvdb_runtime} ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/docs/hosting.md
        ${PROJECT_SOURCE_DIR}/docs/reference.md
        DESTINATION . COMPONENT package EXCLUDE_FROM_ALL)
    install(FILES ${PROJECT_SOURCE_DIR}/docs/install-windows.txt DESTINATION . RENAME README.txt
        COMPONENT package EXCLUDE_FROM_ALL)
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
    endif()
endif()
