# The host's event log: libevtlog as shipped with syslog-ng's development files.
# The library and header live outside the default search paths
# (/usr/lib/syslog-ng, /usr/include/syslog-ng) and the header needs glib's
# include directories.
find_package(PkgConfig REQUIRED)
pkg_check_modules(GLIB2 REQUIRED glib-2.0)

find_path(EVTLOG_INCLUDE_DIR evtlog.h PATH_SUFFIXES syslog-ng REQUIRED)
find_library(EVTLOG_LIBRARY NAMES evtlog PATHS /usr/lib/syslog-ng
             PATH_SUFFIXES syslog-ng REQUIRED)
get_filename_component(EVTLOG_LIBRARY_DIR "${EVTLOG_LIBRARY}" DIRECTORY)

# Headers only: for code that calls the eventlog functions but leaves the
# choice of their implementation to the final link (the library links the real
# one, unit tests link a recording double).
add_library(evtlog_headers INTERFACE)
target_include_directories(evtlog_headers SYSTEM INTERFACE
  ${EVTLOG_INCLUDE_DIR} ${GLIB2_INCLUDE_DIRS})

# The real library, for test executables that log for real.
add_library(evtlog_real INTERFACE)
target_link_libraries(evtlog_real INTERFACE evtlog_headers ${EVTLOG_LIBRARY})
