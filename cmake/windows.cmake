# The Windows parts of the component besides its code: undecorated exports, type library, resources, and the compiler's
# runtime beside it.
enable_language(RC)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(kvdb_bits 64)
    set(kvdb_manifest_processor amd64)
    set(kvdb_unwinder libgcc_s_seh-1.dll)
else()
    set(kvdb_bits 32)
    set(kvdb_manifest_processor x86)
    set(kvdb_unwinder libgcc_s_dw2-1.dll)
endif()

# Files carry the time of the commit, or that of SOURCE_DATE_EPOCH, so that builds of one source are equal.
set(kvdb_time "$ENV{SOURCE_DATE_EPOCH}")
find_package(Git QUIET)
if(kvdb_time STREQUAL "" AND GIT_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} log -1 --format=%ct WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        OUTPUT_VARIABLE kvdb_time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(kvdb_time STREQUAL "")
    set(kvdb_time 0)
endif()
file(WRITE ${PROJECT_BINARY_DIR}/kvdb_time ${kvdb_time})
set(kvdb_at_commit_time ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=${kvdb_time})

set(idl_dir ${PROJECT_SOURCE_DIR}/frame/idl)
set(kvdb_tlb ${PROJECT_BINARY_DIR}/kvdb.tlb)
add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/stdole2.tlb
    COMMAND ${KVDB_WIDL} -t -m${kvdb_bits} -o ${PROJECT_BINARY_DIR}/stdole2.tlb ${idl_dir}/stdole2.idl
    DEPENDS ${idl_dir}/stdole2.idl VERBATIM)
add_custom_command(OUTPUT ${kvdb_tlb}
    COMMAND ${KVDB_WIDL} -t -m${kvdb_bits} -I${idl_dir} -L${PROJECT_BINARY_DIR} -o ${kvdb_tlb}
        ${PROJECT_SOURCE_DIR}/frame/kvdb.idl
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/stamp_type_library ${kvdb_tlb} ${kvdb_time}
    DEPENDS ${PROJECT_SOURCE_DIR}/scripts/stamp_type_library ${PROJECT_SOURCE_DIR}/frame/kvdb.idl
        ${idl_dir}/oaidl.idl ${idl_dir}/unknwn.idl
        ${PROJECT_BINARY_DIR}/stdole2.tlb VERBATIM)

set(kvdb_rc ${PROJECT_SOURCE_DIR}/frame/kvdb.rc)
set(kvdb_string_table ${PROJECT_SOURCE_DIR}/db/string_table.rc)
target_sources(kvdb PRIVATE ${kvdb_rc} ${kvdb_string_table} ${PROJECT_SOURCE_DIR}/frame/kvdb.def)
target_include_directories(kvdb PRIVATE $<$<COMPILE_LANGUAGE:RC>:${PROJECT_BINARY_DIR}>)
set(version_numbers ${PROJECT_VERSION_MAJOR},${PROJECT_VERSION_MINOR},${PROJECT_VERSION_PATCH},0)
set_source_files_properties(${kvdb_rc} PROPERTIES
    COMPILE_DEFINITIONS "KVDB_VERSION_NUMBERS=${version_numbers};KVDB_VERSION_TEXT=\\\"${PROJECT_VERSION}\\\"")
# The resource compiler does not report its dependencies.
file(GLOB scripts ${PROJECT_SOURCE_DIR}/frame/registration/*.rgs)
set_property(SOURCE ${kvdb_rc} PROPERTY OBJECT_DEPENDS ${kvdb_tlb} ${scripts})
set_property(SOURCE ${kvdb_string_table} PROPERTY OBJECT_DEPENDS ${PROJECT_SOURCE_DIR}/db/string_resources.h)
set_target_properties(kvdb PROPERTIES PREFIX "" IMPORT_PREFIX ""
    CXX_LINKER_LAUNCHER "${kvdb_at_commit_time}")
target_link_options(kvdb PRIVATE -Wl,--enable-stdcall-fixup -s)
target_link_libraries(kvdb_frame PUBLIC ole32 oleaut32 uuid advapi32)

# What the package says about itself.
if(kvdb_bits EQUAL 64)
    set(kvdb_regsvr32 regsvr32)
    set(kvdb_regsvr32_note "")
    set(kvdb_unwinder_column "${kvdb_unwinder}     ")
else()
    set(kvdb_regsvr32 "%windir%\\SysWOW64\\regsvr32")
    set(kvdb_regsvr32_note " (on 32-bit Windows plain\nregsvr32 in each of these commands)")
    set(kvdb_unwinder_column "${kvdb_unwinder}     ")
endif()
configure_file(${PROJECT_SOURCE_DIR}/docs/install-windows.txt ${PROJECT_BINARY_DIR}/README-windows.txt @ONLY
    NEWLINE_STYLE CRLF)

configure_file(${PROJECT_SOURCE_DIR}/frame/kvdb.gates.manifest.in ${PROJECT_BINARY_DIR}/kvdb.gates.manifest @ONLY)

# The unwinder and its own dependency, stripped: they are copied beside every program and library.
foreach(runtime ${kvdb_unwinder} libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
        OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${file}")
        find_file(kvdb_${runtime} ${runtime} PATHS ${CMAKE_FIND_ROOT_PATH}/lib ${CMAKE_FIND_ROOT_PATH}/bin REQUIRED
            NO_CMAKE_FIND_ROOT_PATH)
        set(file ${kvdb_${runtime}})
    endif()
    execute_process(COMMAND ${kvdb_at_commit_time} ${CMAKE_STRIP} -o ${PROJECT_BINARY_DIR}/stripped.dll ${file}
        COMMAND_ERROR_IS_FATAL ANY)
    file(COPY_FILE ${PROJECT_BINARY_DIR}/stripped.dll ${PROJECT_BINARY_DIR}/${runtime} ONLY_IF_DIFFERENT)
    list(APPEND kvdb_runtime ${PROJECT_BINARY_DIR}/${runtime})
endforeach()
file(REMOVE ${PROJECT_BINARY_DIR}/stripped.dll)

# Their licences, as the compiler's packages bring them.
kvdb_licence(libgcc.txt /usr/share/doc/gcc-mingw-w64-base/copyright)
kvdb_licence(libgcc-GPL-3.txt /usr/share/common-licenses/GPL-3)
kvdb_licence(libwinpthread.txt /usr/share/doc/mingw-w64-common/copyright)
