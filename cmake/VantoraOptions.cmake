# Compiler settings, as interface targets that every target of ours links.

include(CheckLinkerFlag)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # It keeps nothing of what is compiled with precompiled headers unless it is told to.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    env CCACHE_SLOPPINESS=pch_defines,time_macros "${CCACHE_PROGRAM}")
endif()

add_library(vantora_options INTERFACE)
add_library(vantora::options ALIAS vantora_options)
target_include_directories(vantora_options INTERFACE "${CMAKE_SOURCE_DIR}/src")
target_compile_options(vantora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Wold-style-cast -Wcast-qual -Wformat=2 -Wimplicit-fallthrough
  -Werror=format-security
  $<$<BOOL:${VANTORA_WERROR}>:-Werror>)

# vantora::lean is for the programs that run all day: no unused function stays, and
# libstdc++ costs no relocations and no pages of its own.
add_library(vantora_lean INTERFACE)
add_library(vantora::lean ALIAS vantora_lean)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  # For size: at one tick a second every tick begins with cold caches, so that less code is
  # faster code, and the program's text is half as large as with -O3.
  target_compile_options(vantora_options INTERFACE -Os -ffunction-sections -fdata-sections
    # GCC 12 takes inlined string and variant code for faulty (its bugs 105651 and 105562).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-maybe-uninitialized>)
  if(NOT APPLE)
    target_link_options(vantora_lean INTERFACE
      -Wl,--gc-sections -Wl,--as-needed -static-libstdc++ -static-libgcc)
    # Relocations of tables in a bitmap (DT_RELR, glibc 2.36) instead of 24 bytes each.
    check_linker_flag(CXX -Wl,-z,pack-relative-relocs VANTORA_PACKS_RELOCATIONS)
    if(VANTORA_PACKS_RELOCATIONS)
      target_link_options(vantora_lean INTERFACE -Wl,-z,pack-relative-relocs)
    endif()
  endif()
endif()

# What people run is hardened: stack protectors, the C library's checked functions, code at
# random addresses, and a table of functions that is bound at the start and read-only after.
# On Macs position independence and eager binding are the linker's own way.
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT VANTORA_SANITIZE)
  target_compile_options(vantora_options INTERFACE
    -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  if(NOT APPLE)
    target_compile_options(vantora_options INTERFACE -fPIE -fstack-clash-protection)
    target_link_options(vantora_options INTERFACE -pie -Wl,-z,relro -Wl,-z,now)
  endif()
endif()

if(VANTORA_SANITIZE)
  target_compile_options(vantora_options INTERFACE
    -fsanitize=${VANTORA_SANITIZE} -fno-sanitize-recover=all)
  target_link_options(vantora_options INTERFACE -fsanitize=${VANTORA_SANITIZE})
endif()
if(VANTORA_FUZZ AND NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "The fuzz targets need Clang")
endif()
