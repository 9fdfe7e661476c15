# Installs libraries, headers, the CMake package, pkg-config files, and the program with its man page and
# completions. The installed tree may be moved: the program and the libraries find each other by relative
# paths. A package for a distribution, whose libraries are where the loader looks for them, is made with
# CMAKE_SKIP_INSTALL_RPATH.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(SDPLINE_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
  CACHE STRING "Where zsh finds completions below the prefix")
set(sdpline_libraries sdpline sdpline_negotiate sdpline_tidy)
if(SDPLINE_SIPCORE)
  list(APPEND sdpline_libraries sipcore)
endif()
install(TARGETS ${sdpline_libraries} EXPORT sdplineTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Sets where a file looks for the libraries: in `folder` when installed, and in the build also in the
# folders of the build. CMake would pad the list of the built file with ":" to replace it at
# installation, but an empty element means the current folder. Here the list of the built file begins
# with the installed one.
function(sdpline_find_libraries target folder destination component)
  get_target_property(type ${target} TYPE)
  set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
  if(type STREQUAL "STATIC_LIBRARY" OR CMAKE_SKIP_INSTALL_RPATH)
    return()
  endif()
  get_target_property(here ${target} BINARY_DIR)
  set(path ${folder})
  foreach(library IN LISTS sdpline_libraries)
    get_target_property(there ${library} BINARY_DIR)
    if(NOT there STREQUAL here)
      file(RELATIVE_PATH way ${here} ${there})
      list(APPEND path "$ORIGIN/${way}")
    endif()
  endforeach()
  list(REMOVE_DUPLICATES path)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${path}")
  list(JOIN path ":" path)
  string(REPLACE "$" "\\$" path "${path}")
  string(REPLACE "$" "\\$" folder "${folder}")
  install(CODE "file(RPATH_CHANGE
    FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${destination}/$<TARGET_FILE_NAME:${target}>\"
    OLD_RPATH \"${path}\" NEW_RPATH \"${folder}\")" COMPONENT ${component})
endfunction()
foreach(library IN LISTS sdpline_libraries)
  sdpline_find_libraries(${library} "$ORIGIN" ${CMAKE_INSTALL_LIBDIR} runtime)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/sdpline
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/sdpline)
install(EXPORT sdplineTargets NAMESPACE sdpline:: DESTINATION ${package_dir} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/sdplineConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/sdplineConfig.cmake.in
  ${PROJECT_BINARY_DIR}/sdplineConfig.cmake INSTALL_DESTINATION ${package_dir})
install(FILES ${PROJECT_BINARY_DIR}/sdplineConfig.cmake
              ${PROJECT_BINARY_DIR}/sdplineConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# From the folder of the pkg-config files up to the prefix.
file(RELATIVE_PATH SDPLINE_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" SDPLINE_PC_PREFIX "${SDPLINE_PC_PREFIX}")
# A program that links libsdpline may call the core services too.
if(SDPLINE_SIPCORE)
  set(SDPLINE_PC_REQUIRES "Requires: sipcore = ${PROJECT_VERSION}")
endif()
if(SDPLINE_THREAD_LOCAL)
  set(SDPLINE_PC_CFLAGS " -DSDPLINE_THREAD_LOCAL")
endif()
foreach(library IN LISTS sdpline_libraries)
  string(REPLACE "_" "-" module ${library})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${module}.pc.in ${PROJECT_BINARY_DIR}/${module}.pc
    @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${module}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

if(SDPLINE_TOOLS)
  file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  install(TARGETS sdpline_program RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
  sdpline_find_libraries(sdpline_program "$ORIGIN/${bin_to_lib}" ${CMAKE_INSTALL_BINDIR} program)
  if(EXISTS ${PROJECT_SOURCE_DIR}/docs/man/sdpline.1)
    install(FILES ${PROJECT_SOURCE_DIR}/docs/man/sdpline.1
      DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  endif()
  if(EXISTS ${PROJECT_SOURCE_DIR}/completion/sdpline)
    install(FILES ${PROJECT_SOURCE_DIR}/completion/sdpline
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
    install(FILES ${PROJECT_SOURCE_DIR}/completion/_sdpline
      DESTINATION ${SDPLINE_ZSH_COMPLETIONS} COMPONENT program)
    install(FILES ${PROJECT_SOURCE_DIR}/completion/sdpline.fish
      DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)
  endif()
endif()
