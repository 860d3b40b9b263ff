# Small helpers so that every component declares itself the same way.

function(builtin2_apply_sanitizers)
  if(BUILTIN2_SANITIZE)
    set(flags -fsanitize=${BUILTIN2_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_compile_options(${flags})
    add_link_options(${flags})
  endif()
endfunction()

include(${CMAKE_CURRENT_LIST_DIR}/Builtin2SourcePrefix.cmake)

# The project's own code builds with -Wall -Wextra -Wpedantic, and with BUILTIN2_WERROR a
# warning in it fails the build. Headers of other projects come from system include
# folders, whose warnings the compilers never report, so only our code is held to this.
function(builtin2_apply_warnings)
  add_compile_options(-Wall -Wextra -Wpedantic)
  if(BUILTIN2_WERROR)
    add_compile_options(-Werror)
  endif()
endfunction()

# builtin2_public_headers(<target> <dir>): <dir> holds public headers of <target>,
# used from the build tree and installed under include/.
function(builtin2_public_headers target dir)
  get_filename_component(abs ${dir} ABSOLUTE)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${abs}>)
  else()
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${abs}>)
  endif()
  install(DIRECTORY ${abs}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endfunction()

# builtin2_add_library(<target> [EXPORT_NAME <name>] [INTERFACE]
#     SOURCES ... INCLUDE_DIRS ... PUBLIC_LIBS ... PRIVATE_LIBS ...)
# A shared library whose public headers live in each INCLUDE_DIRS folder; it is
# installed and exported as builtin2::<EXPORT_NAME>.
function(builtin2_add_library target)
  cmake_parse_arguments(arg "INTERFACE" "EXPORT_NAME;OUTPUT_NAME" "SOURCES;INCLUDE_DIRS;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  if(arg_INTERFACE)
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  else()
    add_library(${target} SHARED ${arg_SOURCES})
    set(scope PUBLIC)
    target_link_libraries(${target} PRIVATE ${arg_PRIVATE_LIBS})
  endif()
  foreach(dir IN LISTS arg_INCLUDE_DIRS)
    builtin2_public_headers(${target} ${dir})
  endforeach()
  target_include_directories(${target} ${scope} $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${target} ${scope} ${arg_PUBLIC_LIBS})
  if(arg_EXPORT_NAME)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${arg_EXPORT_NAME})
  endif()
  if(arg_OUTPUT_NAME)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${arg_OUTPUT_NAME})
  endif()
  install(TARGETS ${target} EXPORT builtin2Targets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  add_library(builtin2::${target} ALIAS ${target})
endfunction()

# builtin2_add_test(<name> SOURCES ... LIBS ...): one GoogleTest binary, each case a ctest test.
function(builtin2_add_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} GTest::gtest GTest::gmock GTest::gtest_main)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
endfunction()

# builtin2_add_bench(<name> SOURCES ... LIBS ...): one Google Benchmark binary bench/bm_<name>.
function(builtin2_add_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(bm_${name} ${arg_SOURCES})
  target_link_libraries(bm_${name} PRIVATE ${arg_LIBS} benchmark::benchmark benchmark::benchmark_main)
  set_target_properties(bm_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bench)
endfunction()

function(builtin2_install_package)
  include(CMakePackageConfigHelpers)
  set(dest ${CMAKE_INSTALL_LIBDIR}/cmake/builtin2)
  install(EXPORT builtin2Targets NAMESPACE builtin2:: DESTINATION ${dest})
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/builtin2Config.cmake.in
    ${PROJECT_BINARY_DIR}/builtin2Config.cmake INSTALL_DESTINATION ${dest}
    PATH_VARS CMAKE_INSTALL_LIBDIR)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/builtin2ConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
  # What an author's project needs beyond the targets: builtin2_add_bundle and what it uses.
  install(FILES ${PROJECT_BINARY_DIR}/builtin2Config.cmake
                ${PROJECT_BINARY_DIR}/builtin2ConfigVersion.cmake
                ${PROJECT_SOURCE_DIR}/cmake/Builtin2SourcePrefix.cmake
                ${PROJECT_SOURCE_DIR}/microservices/cmake/Builtin2Bundle.cmake
          DESTINATION ${dest})
endfunction()

# builtin2_add_concurrency_test(<test binary> <gtest filter>): the binary's cases that run
# threads, as one ctest case labelled "concurrency", which ./run tsan runs under
# ThreadSanitizer. ./run test skips the label: each case also runs on its own there.
function(builtin2_add_concurrency_test binary filter)
  add_test(NAME ${binary}.concurrency COMMAND ${binary} --gtest_filter=${filter})
  set_tests_properties(${binary}.concurrency PROPERTIES LABELS concurrency)
endfunction()
