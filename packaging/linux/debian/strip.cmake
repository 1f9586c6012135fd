# Takes what only debuggers read out of the package's programs, as Debian's own tools do:
# CPack's strip leaves the sections that name the compiler.
file(GLOB programs "${CPACK_TEMPORARY_DIRECTORY}/usr/bin/*"
  "${CPACK_TEMPORARY_DIRECTORY}/usr/libexec/vantora/*")
find_program(STRIP_PROGRAM strip REQUIRED)
execute_process(
  COMMAND "${STRIP_PROGRAM}" --remove-section=.comment --remove-section=.note ${programs}
  COMMAND_ERROR_IS_FATAL ANY)
