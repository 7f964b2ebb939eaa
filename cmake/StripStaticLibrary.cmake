# CPack strips programs and shared libraries only. Debug information would name the build folder.
file(GLOB_RECURSE libraries ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.a)
if(libraries)
  execute_process(
    COMMAND strip --strip-debug --enable-deterministic-archives ${libraries}
    COMMAND_ERROR_IS_FATAL ANY)
endif()
