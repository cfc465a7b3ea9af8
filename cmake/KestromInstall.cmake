# What a host finds on a system: the shared library, its headers, a CMake package and a pkg-config file. All of it may be
# moved to another prefix.
include(CMakePackageConfigHelpers)

install(TARGETS Kestrom EXPORT KestromTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/Kestrom DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kestrom)
install(EXPORT KestromTargets NAMESPACE Kestrom:: DESTINATION ${package_dir})
configure_package_config_file(cmake/KestromConfig.cmake.in ${PROJECT_BINARY_DIR}/KestromConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestromConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KestromConfig.cmake ${PROJECT_BINARY_DIR}/KestromConfigVersion.cmake
  DESTINATION ${package_dir})

# Reads "lib/pkgconfig" as two steps below the prefix; a multi-arch "lib/x86_64-linux-gnu/pkgconfig" is three.
string(REGEX REPLACE "[^/]+" ".." up "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
configure_file(cmake/kestrom.pc.in ${PROJECT_BINARY_DIR}/kestrom.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kestrom.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
