include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qdlflex)
set(generated_dir ${PROJECT_BINARY_DIR}/cmake)

# Components become packages: runtime, development and tools.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/qdlflex
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
install(TARGETS ${QDLFLEX_LIBRARIES} EXPORT qdlflexTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
install(EXPORT qdlflexTargets NAMESPACE qdlflex::
  DESTINATION ${package_dir} COMPONENT development)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/qdlflexConfig.cmake.in ${generated_dir}/qdlflexConfig.cmake
  INSTALL_DESTINATION ${package_dir})
# Before 1.0 a new minor version may break programs.
write_basic_package_version_file(${generated_dir}/qdlflexConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${generated_dir}/qdlflexConfig.cmake ${generated_dir}/qdlflexConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The package file finds its prefix by where it lies, as the CMake package does.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pkgconfig_to_prefix
  ${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/qdlflex.pc.in ${generated_dir}/qdlflex.pc @ONLY)
install(FILES ${generated_dir}/qdlflex.pc
  DESTINATION ${pkgconfig_dir} COMPONENT development)

file(GLOB man_pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/man/man1/*.1)
if(QDLFLEX_BUILD_CLI AND man_pages)
  install(FILES ${man_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endif()
