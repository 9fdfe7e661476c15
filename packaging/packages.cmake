# Debian packages: the libraries, the files needed to build programs, and the sdpline program.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sdpline)
set(CPACK_PACKAGE_VENDOR "The sdpline authors")
set(CPACK_PACKAGE_CONTACT "The sdpline authors <maintainers@sdpline.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Each package has its own summary: the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development program)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/src/sipcore ${PROJECT_BINARY_DIR}/src/negotiate
  ${PROJECT_BINARY_DIR}/src/tidy)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libsdpline1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"SDP bodies of SIP messages to plain C records and back
A library that decodes the session descriptions which SIP messages carry into
a tree of C records, and writes them back, with a reason for every one that it
refuses. This package holds the shared libraries.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION ON)
file(WRITE ${PROJECT_BINARY_DIR}/packaging/triggers "activate-noawait ldconfig\n")
# The version since which each exported name exists, so that a package that uses only old names can use an
# old library. A new name gets the version that adds it.
set(symbols "")
foreach(library IN LISTS sdpline_libraries)
  get_target_property(major ${library} SOVERSION)
  if(NOT EXISTS ${PROJECT_SOURCE_DIR}/abi/lib${library}.symbols)
    continue()
  endif()
  string(APPEND symbols "lib${library}.so.${major} libsdpline1 #MINVER#\n")
  file(STRINGS ${PROJECT_SOURCE_DIR}/abi/lib${library}.symbols names)
  foreach(name IN LISTS names)
    string(APPEND symbols " ${name}@Base ${PROJECT_VERSION_MAJOR}.0.0\n")
  endforeach()
endforeach()
file(WRITE ${PROJECT_BINARY_DIR}/packaging/symbols "${symbols}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/packaging/triggers ${PROJECT_BINARY_DIR}/packaging/symbols)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libsdpline-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libsdpline1 (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"SDP bodies of SIP messages to plain C records and back, development files
A library that decodes the session descriptions which SIP messages carry into
a tree of C records, and writes them back. This package holds what programs
are built with: headers, the CMake package and the pkg-config files.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME sdpline)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION comm)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "libsdpline1 (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
"reader of the SDP bodies of SIP messages
A program that checks, prints, compares and writes back the session
descriptions which SIP messages carry, and tells why one was refused.")

include(${CMAKE_CURRENT_LIST_DIR}/documents.cmake)
# The man page is compressed; the trigger runs ldconfig, not scripts.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/compress.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/control.cmake)
include(CPack)
