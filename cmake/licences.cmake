# The licences of what the packages contain besides our own work, in one folder. The system's packages bring them.
set(kvdb_licences ${PROJECT_BINARY_DIR}/licences)

# kvdb_licence(NAME FILE...): the first of the files that is there.
function(kvdb_licence name)
    foreach(file ${ARGN})
        if(EXISTS ${file})
            configure_file(${file} ${kvdb_licences}/${name} COPYONLY)
            return()
        endif()
    endforeach()
    message(WARNING "The package will lack ${name}: no file of ${ARGN}")
endfunction()
