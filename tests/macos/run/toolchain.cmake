# SPDX-License-Identifier: MIT
#
# Builds the macOS sources into programs that run on Linux: clang with Apple's
# Objective-C ABI, the declarations of tests/macos/shim, and the stand-ins beside this file
# in place of the system's libraries. For scripts/check-macos alone.
set(CMAKE_SYSTEM_NAME StandInMacOS)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}")

find_program(CMAKE_C_COMPILER clang-14 REQUIRED)
find_program(CMAKE_CXX_COMPILER clang++-14 REQUIRED)
set(CMAKE_OBJCXX_COMPILER "${CMAKE_CXX_COMPILER}")

set(run_flags "-DVANTORA_MACOS_CHECK -isystem ${CMAKE_CURRENT_LIST_DIR}/system")
string(APPEND run_flags " -isystem ${CMAKE_CURRENT_LIST_DIR}/../shim -fblocks")
set(CMAKE_C_FLAGS_INIT "${run_flags}")
set(CMAKE_CXX_FLAGS_INIT "${run_flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${run_flags} -fobjc-runtime=macosx-13.0.0")

find_program(STAND_IN_LLD ld.lld)
if(STAND_IN_LLD)
  set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld")
endif()

# What the build description asks for: the folder of the stand-ins.
set(VANTORA_STAND_INS "${CMAKE_CURRENT_LIST_DIR}")
