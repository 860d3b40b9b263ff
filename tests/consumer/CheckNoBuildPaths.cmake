# Script mode: install the build into PREFIX, then look through every installed library and
# program, debug information removed, for the absolute path of SOURCE_ROOT.
#
# Sanitizer instrumentation records the file names the compiler was given, unmapped. A
# compiler cache with a base directory hands it relative ones; otherwise a sanitized build
# holds the absolute path of each compiled source, and those exact names are tolerated (the
# source-name tests of tests/host still catch a report that carries one).
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX} OUTPUT_QUIET
                COMMAND_ERROR_IS_FATAL ANY)

string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" root_pattern "${SOURCE_ROOT}")
set(stripped ${PREFIX}.stripped)
file(GLOB_RECURSE installed LIST_DIRECTORIES false ${PREFIX}/*)
set(checked 0)
set(tolerated 0)
set(leaks "")
foreach(file IN LISTS installed)
  file(READ ${file} magic LIMIT 4 HEX)
  if(IS_SYMLINK ${file} OR NOT magic STREQUAL "7f454c46")
    continue()
  endif()
  math(EXPR checked "${checked} + 1")
  execute_process(COMMAND ${OBJCOPY} --strip-debug ${file} ${stripped} COMMAND_ERROR_IS_FATAL ANY)
  file(STRINGS ${stripped} found REGEX "${root_pattern}")
  foreach(text IN LISTS found)
    if(SANITIZED AND text MATCHES "^${root_pattern}/[^ ]+\\.(c|cc|cpp|h|hpp)$" AND EXISTS ${text})
      math(EXPR tolerated "${tolerated} + 1")
    else()
      string(APPEND leaks "\n  ${file}: ${text}")
    endif()
  endforeach()
endforeach()
file(REMOVE ${stripped})

if(checked EQUAL 0)
  message(FATAL_ERROR "no library or program was installed under ${PREFIX}")
endif()
if(leaks)
  message(FATAL_ERROR "installed files name the source root ${SOURCE_ROOT}:${leaks}")
endif()
message(STATUS "${checked} installed libraries and programs name no build path"
               " (${tolerated} sanitizer source records tolerated)")
