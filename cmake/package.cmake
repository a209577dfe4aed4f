# The package for Debian and its like, of the installed tree under /usr: cpack -G DEB in the build's folder.
set(CPACK_PACKAGE_NAME kvdb)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "the makers of kvdb <kvdb@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "data of a recording studio: component and command-line tool")
set(CPACK_PACKAGE_DESCRIPTION
    "The library keeps a studio's two database files for programs; the tool kvdb looks at, keeps,\n moves and rescues \
them without the studio program.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
