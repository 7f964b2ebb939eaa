# Debian packages: the shared library, what programs are built with, and the command.
# scripts/packages makes them, scripts/package-test proves them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qdlflex)
set(CPACK_PACKAGE_CONTACT
  "Seed 6195f965 maintainers <maintainers@users.noreply.c-seed-6195f965.example>")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE qdlflex)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Summary and description; the first line is the summary.
set(what_it_is
"A flexible body is a finite-element mesh with its mode shapes, modal stresses
 and strains, masses, loads and units. qdlflex reads and writes such a body as
 a QDL file, derives its inertia invariants and orthonormal modes, moves and
 simplifies it, and gives a multibody simulation the data by mode or by node.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libqdlflex${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"modal flexible bodies in QDL files (shared library)
${what_it_is}
 .
 This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqdlflex-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"modal flexible bodies in QDL files (development files)
${what_it_is}
 .
 This package holds the C headers, the CMake package and the pkg-config file.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qdlflex)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"modal flexible bodies in QDL files (command)
${what_it_is}
 .
 This package holds the command, which imports the results of the CalculiX
 solver, shows what a file holds, edits it and exports it for viewers.")

set(same_library
  "libqdlflex${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
# The pkg-config file and the CMake package ask for libtirpc, whose static library a program takes
# that links the static one of this package.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_library}, libtirpc-dev")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_library}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/qdlflex)
# Before 1.0 a program wants the version that it was built with, or a later one of the same kind.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_PRE_BUILD_SCRIPTS
  ${PROJECT_SOURCE_DIR}/cmake/debian/documents.cmake
  ${PROJECT_SOURCE_DIR}/cmake/debian/strip_static_library.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/no_scripts.cmake)
set(CPACK_QDLFLEX_SOURCE_DIR ${PROJECT_SOURCE_DIR})
include(CPack)
