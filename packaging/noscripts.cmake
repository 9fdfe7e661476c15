# Run by CPack when the packages are made: takes out the maintainer scripts that it adds to a package
# with libraries. All that they do is call ldconfig, which the package's trigger does once for all.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(folder ${CPACK_TOPLEVEL_DIRECTORY}/unpacked)
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${folder}/DEBIAN/postinst)
    file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${folder} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(REMOVE_RECURSE ${folder})
endforeach()
