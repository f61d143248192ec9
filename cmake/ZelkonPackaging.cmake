# pkg-config files and the Debian packages that `make package` (cpack) builds.

# pkg-config: zelkon.pc, and zelkon-test.pc for Zelkon::Test.
file(RELATIVE_PATH ZELKON_PC_PREFIX "/root/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/root")
string(REGEX REPLACE "/$" "" ZELKON_PC_PREFIX "${ZELKON_PC_PREFIX}")
foreach(_pc zelkon zelkon-test)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/${_pc}.pc.in ${PROJECT_BINARY_DIR}/${_pc}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${_pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
            COMPONENT dev)
endforeach()

# One package per component: the shared library for applications that run, the development
# files for those that build, and the Designer plugin for those that design forms.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zelkon)
set(CPACK_PACKAGE_VENDOR "Zelkon developers")
set(CPACK_PACKAGE_CONTACT "Zelkon developers <zelkon@localhost>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package has a summary of its own: the first line of its description below.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
# Debug information stays in the build tree; the packages carry stripped files.
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL lib dev)
if(ZELKON_BUILD_DESIGNER)
    list(APPEND CPACK_COMPONENTS_ALL designer)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The plugin needs the library of this very build, which no installed package provides yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)

set(_soname libzelkon${PROJECT_VERSION_MAJOR})
set(_exact "${_soname} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_LIB_PACKAGE_NAME ${_soname})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIB_DESCRIPTION "Zelkon filter controls for Qt 6 (shared library)\n${PROJECT_DESCRIPTION}: check lists, relative dates, numeric fields, look-ups and more. This is the library that applications using them run with.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libzelkon-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${_exact}, qt6-base-dev")
set(CPACK_DEBIAN_DEV_DESCRIPTION "Zelkon filter controls for Qt 6 (development files)\nHeaders, the CMake package (find_package(Zelkon)), the pkg-config files zelkon and zelkon-test, and the Zelkon::Test library of test helpers.")
set(CPACK_DEBIAN_DESIGNER_PACKAGE_NAME zelkon-designer-plugin)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_DEPENDS "${_exact}")
set(CPACK_DEBIAN_DESIGNER_DESCRIPTION "Zelkon filter controls for Qt 6 (Qt Designer plugin)\nPuts every Zelkon control in Qt Designer's widget box and opens its property page from the task menu.")
include(CPack)
