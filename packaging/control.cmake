# CPack runs this when it makes the packages, for fields that CPack cannot set. Removes the maintainer
# scripts that CPack adds to a package with libraries: they only call ldconfig, which the trigger of the
# package does. Marks the packages that can be installed for several architectures at once.
set(multi_arch_libsdpline1 same)
set(multi_arch_libsdpline-dev same)
set(multi_arch_sdpline foreign)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(folder ${CPACK_TOPLEVEL_DIRECTORY}/unpacked)
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
  file(READ ${folder}/DEBIAN/control control)
  string(REGEX MATCH "Package: ([^\n]*)" ignored "${control}")
  if(NOT multi_arch_${CMAKE_MATCH_1})
    message(FATAL_ERROR "${CMAKE_MATCH_1} has no Multi-Arch")
  endif()
  string(REGEX REPLACE "(Architecture:[^\n]*)" "\\1\nMulti-Arch: ${multi_arch_${CMAKE_MATCH_1}}" control
    "${control}")
  file(WRITE ${folder}/DEBIAN/control "${control}")
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${folder} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${folder})
endforeach()
