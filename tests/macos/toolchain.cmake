# SPDX-License-Identifier: MIT
#
# Builds for arm64 macOS 13 on a Linux machine: the compiler that scripts/check-macos
# fetched, the declarations of tests/macos/shim in place of Apple's frameworks, and link
# stubs in place of their libraries. Proves that the sources compile and link against
# those; nothing that comes out of it is meant to run.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0.0) # macOS 13
set(CMAKE_SYSTEM_PROCESSOR arm64)

# Where scripts/check-macos keeps the compiler, the generated stubs and header links.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_CHECK_DIR)
set(macos_check "${CMAKE_CURRENT_LIST_DIR}")

set(CMAKE_C_COMPILER "${MACOS_CHECK_DIR}/bin/cc")
set(CMAKE_CXX_COMPILER "${MACOS_CHECK_DIR}/bin/c++")
set(CMAKE_OBJCXX_COMPILER "${MACOS_CHECK_DIR}/bin/c++")
set(CMAKE_AR "${MACOS_CHECK_DIR}/bin/ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${MACOS_CHECK_DIR}/bin/ranlib" CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL "${CMAKE_COMMAND};-E;true" CACHE STRING "")

# The compiler package's own defaults say that every part of the standard library is
# there; the second flag lets its headers refuse what macOS 13 does not have.
set(macos_check_flags "-target aarch64-macos.13.0 -U_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS")
string(APPEND macos_check_flags
       " -Wunguarded-availability -isystem ${macos_check}/shim -isystem ${macos_check}/system"
       " -isystem ${MACOS_CHECK_DIR}/sysroot/include -DVANTORA_MACOS_CHECK")
foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_FLAGS_INIT "${macos_check_flags}")
endforeach()
# The compiler's driver adds an -ObjC++ of its own, which nothing then uses.
string(APPEND CMAKE_OBJCXX_FLAGS_INIT " -Wno-unused-command-line-argument")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-F${macos_check}/link -L${macos_check}/link")

# Nothing of the Linux machine is ever found by accident.
set(CMAKE_FIND_ROOT_PATH "${MACOS_CHECK_DIR}/sysroot")
foreach(kind PROGRAM LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(ENV{PKG_CONFIG_LIBDIR} "${MACOS_CHECK_DIR}/sysroot/lib/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")
set(CCACHE_PROGRAM "" CACHE STRING "")
