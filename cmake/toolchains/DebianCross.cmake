# What the two ARM toolchain files share: Debian's cross compiler for
# VEKTKK_CROSS_TRIPLET, the target's own packages in a sysroot unpacked by
# scripts/install-deps.sh --arm, and qemu-user to run what was built, so
# that ctest runs the tests on the emulated processor.
#
# The compiler keeps its own C and C++ libraries (/usr/TRIPLET); everything
# else is looked for in the sysroot only. VEKTKK_SYSROOT may point elsewhere;
# by default it is where the install script puts it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${VEKTKK_CROSS_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${VEKTKK_CROSS_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${VEKTKK_CROSS_TRIPLET})
# Everything here is built by one compiler: its notes on how GCC 7.1 changed
# the passing of some arguments on ARM concern nobody.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

if(NOT VEKTKK_SYSROOT)
  if(DEFINED ENV{VEKTKK_CACHE})
    set(VEKTKK_SYSROOT $ENV{VEKTKK_CACHE}/arm/${VEKTKK_CROSS_TRIPLET}/sysroot)
  else()
    get_filename_component(VEKTKK_SYSROOT
      ${CMAKE_CURRENT_LIST_DIR}/../../.cache/arm/${VEKTKK_CROSS_TRIPLET}/sysroot ABSOLUTE)
  endif()
endif()
if(NOT EXISTS ${VEKTKK_SYSROOT}/.packages)
  message(FATAL_ERROR "No sysroot at ${VEKTKK_SYSROOT}: run scripts/install-deps.sh --arm")
endif()
# Passed on to the compiler checks, which read this file again.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VEKTKK_SYSROOT)

set(CMAKE_FIND_ROOT_PATH ${VEKTKK_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Where the linker finds the libraries that others need in turn (libz.so.1
# for the container, libevtlog for a host of the installed library).
set(VEKTKK_RPATH_LINK)
foreach(dir lib/${VEKTKK_CROSS_TRIPLET} usr/lib/${VEKTKK_CROSS_TRIPLET} usr/lib/syslog-ng)
  string(APPEND VEKTKK_RPATH_LINK " -Wl,-rpath-link,${VEKTKK_SYSROOT}/${dir}")
endforeach()
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "${VEKTKK_RPATH_LINK}")
endforeach()

set(ENV{PKG_CONFIG_SYSROOT_DIR} ${VEKTKK_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
  ${VEKTKK_SYSROOT}/usr/lib/${VEKTKK_CROSS_TRIPLET}/pkgconfig:${VEKTKK_SYSROOT}/usr/share/pkgconfig)

# The loader, libc and libstdc++ of the target come from the sysroot too.
set(CMAKE_CROSSCOMPILING_EMULATOR ${VEKTKK_QEMU} -L ${VEKTKK_SYSROOT})
