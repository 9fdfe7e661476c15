# Links the objects of an archive into one object, and makes the names that sdpinternals.h declares local
# to it. Run after the archive is made: cmake -DARCHIVE=... -DHEADER=... -DLINKER=... -DOBJCOPY=... -DAR=...
# -P localnames.cmake
file(STRINGS ${HEADER} declarations REGEX "^SDPLINE_API ")
set(names "")
foreach(declaration IN LISTS declarations)
  if(NOT declaration MATCHES "([A-Za-z_0-9]+)\\(")
    message(FATAL_ERROR "no function in: ${declaration}")
  endif()
  string(APPEND names "${CMAKE_MATCH_1}\n")
endforeach()
file(WRITE ${ARCHIVE}.names "${names}")
set(object ${ARCHIVE}.o)
foreach(command IN ITEMS
    "${LINKER} -r --whole-archive ${ARCHIVE} -o ${object}"
    "${OBJCOPY} --localize-symbols=${ARCHIVE}.names ${object}"
    "${CMAKE_COMMAND} -E rm ${ARCHIVE}"
    "${AR} qcsD ${ARCHIVE} ${object}")
  separate_arguments(command UNIX_COMMAND "${command}")
  execute_process(COMMAND ${command} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(REMOVE ${object} ${ARCHIVE}.names)
