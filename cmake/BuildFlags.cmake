# Compile and link flags of everything built here. Nothing of this reaches a program that uses the
# installed library.

add_library(qdlflex_flags INTERFACE)

target_compile_options(qdlflex_flags INTERFACE
  -Wall -Wextra -Wconversion
  $<$<BOOL:${QDLFLEX_WERROR}>:-Werror>
  # GCC 12 takes "text" + string for overlapping copies (its bug 105651).
  $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  # Fused multiply-add would make results depend on the machine.
  -ffp-contract=off)

# For code that is compiled often and runs briefly. Only a plain debug build has all that a debugger
# wants.
set(QDLFLEX_UNOPTIMISED -O0 -g1)
if(CMAKE_BUILD_TYPE STREQUAL Debug AND NOT QDLFLEX_SANITIZE)
  set(QDLFLEX_UNOPTIMISED)
endif()

if(QDLFLEX_SANITIZE)
  # The check of dynamic types asks the system through a descriptor, which tests leave it none of.
  set(sanitizer_flags -fsanitize=${QDLFLEX_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  target_compile_options(qdlflex_flags INTERFACE ${sanitizer_flags})
  target_link_options(qdlflex_flags INTERFACE ${sanitizer_flags})
endif()
