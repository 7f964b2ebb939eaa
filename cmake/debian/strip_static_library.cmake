# Runs before the packages are put together. CPack strips programs and shared libraries only; the
# debug information of the static one would name the build folder.

file(GLOB_RECURSE libraries ${CPACK_TEMPORARY_DIRECTORY}/*.a)
execute_process(
  COMMAND strip --strip-debug --enable-deterministic-archives ${libraries}
  COMMAND_ERROR_IS_FATAL ANY)
