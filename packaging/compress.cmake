# CPack runs this after installing, before it makes packages: compresses man pages.
file(GLOB_RECURSE pages ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.[1-9])
list(FILTER pages INCLUDE REGEX "/share/man/man[1-9]/")
foreach(page IN LISTS pages)
  execute_process(COMMAND gzip -9 -n -f ${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
