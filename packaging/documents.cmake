# The copyright file and changelog that every Debian package carries.
set(documents ${PROJECT_BINARY_DIR}/packaging)
file(READ ${PROJECT_SOURCE_DIR}/LICENSE license)
string(REGEX REPLACE "^MIT License\n\n[^\n]*\n\n" "" license "${license}")
string(STRIP "${license}" license)
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license "${license}")
file(CONFIGURE OUTPUT ${documents}/copyright CONTENT
"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: sdpline

Files: *
Copyright: 2026 The sdpline authors
License: MIT

License: MIT
 ${license}
")
file(CONFIGURE OUTPUT ${documents}/changelog CONTENT
"sdpline (${PROJECT_VERSION}) unstable; urgency=low

  * See CHANGELOG.md of the sources.

 -- ${CPACK_PACKAGE_CONTACT}  Sat, 21 Nov 2026 00:00:00 +0000
")
find_program(SDPLINE_GZIP gzip REQUIRED)
execute_process(COMMAND ${SDPLINE_GZIP} -9 -n -c ${documents}/changelog
  OUTPUT_FILE ${documents}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
foreach(component runtime development program)
  string(TOUPPER ${component} upper)
  install(FILES ${documents}/copyright ${documents}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
    COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
# Documents and examples for developers who use the library.
set(development_documents ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME})
install(FILES
    ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/SECURITY.md ${PROJECT_SOURCE_DIR}/docs/grammar.md
    ${PROJECT_SOURCE_DIR}/docs/integration.md ${PROJECT_SOURCE_DIR}/docs/results.md
  DESTINATION ${development_documents} COMPONENT development EXCLUDE_FROM_ALL)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${development_documents} COMPONENT development EXCLUDE_FROM_ALL)
