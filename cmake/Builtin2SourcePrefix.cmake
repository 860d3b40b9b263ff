# Installed with the package: builtin2_add_bundle uses it in an author's project too.
# builtin2_map_source_prefix([<target>]): __FILE__ and std::source_location name the calling
# project's sources relative to its source directory, so fatal reports and log records carry
# no build machine's layout and two checkouts of one commit build the same strings. The
# second map covers a compiler cache with a base directory, which hands the compiler paths
# relative to the build directory (where Ninja runs it). Debug information keeps its paths,
# so that a debugger still finds the sources. Without a target, applies to the current
# directory and below.
function(builtin2_map_source_prefix)
  set(flags -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  file(RELATIVE_PATH from_build ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR})
  string(REGEX REPLACE "/$" "" from_build "${from_build}")
  if(from_build)
    list(APPEND flags -fmacro-prefix-map=${from_build}/=)
  endif()
  if(ARGC EQUAL 1)
    target_compile_options(${ARGV0} PRIVATE ${flags})
  else()
    add_compile_options(${flags})
  endif()
endfunction()
