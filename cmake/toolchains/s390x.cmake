# Builds for s390x, the big-endian machine that Debian has a compiler and an emulator for.
# scripts/byte-order-test fills the folder of libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)

set(CMAKE_C_COMPILER s390x-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x-static -L /usr/s390x-linux-gnu)
set(CMAKE_LIBRARY_ARCHITECTURE s390x-linux-gnu)

get_filename_component(sysroot ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot-s390x ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${sysroot} /usr/s390x-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(ENV{PKG_CONFIG_LIBDIR} ${sysroot}/usr/lib/s390x-linux-gnu/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})
