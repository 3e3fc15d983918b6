# Installs headers, the library and its platform libraries, a CMake package
# (find_package(vektkk CONFIG REQUIRED) -> vektkk::vektkk) and vektkk.pc.
include(CMakePackageConfigHelpers)

set(VEKTKK_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vektkk)

install(TARGETS vektkk vekstrconv vekatomtag
  EXPORT vektkkTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vektkk
  FILES_MATCHING PATTERN "*.h")

install(EXPORT vektkkTargets
  NAMESPACE vektkk::
  DESTINATION ${VEKTKK_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/vektkkConfig.cmake.in
  ${PROJECT_BINARY_DIR}/vektkkConfig.cmake
  INSTALL_DESTINATION ${VEKTKK_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vektkkConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/vektkkConfig.cmake
  ${PROJECT_BINARY_DIR}/vektkkConfigVersion.cmake
  DESTINATION ${VEKTKK_CMAKE_DIR})

# The .pc file finds its prefix relative to itself, so an installed tree can
# be moved (or installed with --prefix) and still be found.
file(RELATIVE_PATH VEKTKK_PC_TO_PREFIX
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/vektkk.pc.in ${PROJECT_BINARY_DIR}/vektkk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vektkk.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
