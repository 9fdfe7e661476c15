# Builds for another machine with the cross compilers of Debian, and runs the programs: those for i386
# directly on an x86-64 machine, others under qemu-user.
# SDPLINE_MACHINE is the name of the compilers: i686-linux-gnu, aarch64-linux-gnu, s390x-linux-gnu.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES SDPLINE_MACHINE)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR ${SDPLINE_MACHINE})
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${SDPLINE_MACHINE}-gcc)
set(CMAKE_CXX_COMPILER ${SDPLINE_MACHINE}-g++)
set(libraries /usr/${SDPLINE_MACHINE}/lib)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "i686" AND CMAKE_HOST_SYSTEM_PROCESSOR STREQUAL "x86_64")
  set(CMAKE_CROSSCOMPILING_EMULATOR ${libraries}/ld-linux.so.2 --library-path ${libraries})
else()
  # Under qemu-user a child that aborts does not end, and limits of the address space have no effect: the
  # tests of both have DeathTest in their names.
  string(REPLACE "i686" "i386" emulator ${CMAKE_SYSTEM_PROCESSOR})
  set(CMAKE_CROSSCOMPILING_EMULATOR env GTEST_FILTER=-*DeathTest.*
    qemu-${emulator} -L /usr/${SDPLINE_MACHINE})
endif()
set(CMAKE_FIND_ROOT_PATH /usr/${SDPLINE_MACHINE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
