# Runs before the packages are put together: adds what every Debian package has in
# /usr/share/doc, and compresses the man pages.

set(source ${CPACK_QDLFLEX_SOURCE_DIR})
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

set(readable FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

function(compress)
  execute_process(COMMAND gzip -9 -n ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  set(documents ${share}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${documents})
  configure_file(${source}/cmake/debian/copyright ${documents}/copyright COPYONLY ${readable})
  configure_file(${source}/cmake/debian/changelog.in ${documents}/changelog.Debian @ONLY ${readable})
  configure_file(${source}/CHANGELOG.md ${documents}/changelog COPYONLY ${readable})
  compress(${documents}/changelog.Debian ${documents}/changelog)
  file(GLOB pages ${share}/man/man1/*.1)
  if(pages)
    compress(${pages})
  endif()
endforeach()
