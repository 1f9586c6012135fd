# The frameworks of macOS as targets framework::NAME: the system's on a Mac, and the
# stand-ins of tests/macos/run where the macOS programs run on Linux.
foreach(name IN ITEMS AppKit CoreFoundation CoreGraphics Foundation IOKit ServiceManagement
                      SystemConfiguration objc)
  add_library(framework_${name} INTERFACE)
  add_library(framework::${name} ALIAS framework_${name})
  if(VANTORA_STAND_INS)
    target_link_libraries(framework_${name} INTERFACE vantora_stand_ins_whole)
  elseif(name STREQUAL "objc")
    target_link_libraries(framework_${name} INTERFACE objc)
  else()
    target_link_libraries(framework_${name} INTERFACE "-framework ${name}")
  endif()
endforeach()
# A misspelt selector would be seen when it is sent, and not before.
target_compile_options(framework_objc INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:-Wundeclared-selector>)
