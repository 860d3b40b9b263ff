# Script mode: install the build, then, against the installed tree only:
# 1. configure and build a small consumer program with find_package(builtin2), and run it;
# 2. write a new defining library with the installed `orvex new`, configure and build it
#    (find_package(builtin2) and builtin2_add_bundle, nothing else), run its own test, and
#    load it in the installed orvex beside the installed sample library, calling a builtin
#    of each.
# Configuring either project must print no warning (Boost comes through its own package
# configuration).
function(run_step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "step failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(step_output "${out}" PARENT_SCOPE)
  set(step_errors "${err}" PARENT_SCOPE)
endfunction()

function(configure_without_warnings source build)
  run_step(${CMAKE_COMMAND} -S ${source} -B ${build} -G ${GENERATOR}
           -DCMAKE_PREFIX_PATH=${PREFIX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
  if("${step_output}${step_errors}" MATCHES "CMake Warning|CMake Deprecation Warning")
    message(FATAL_ERROR "configuring ${source} against the installed package warned:\n${step_output}\n${step_errors}")
  endif()
endfunction()

file(REMOVE_RECURSE ${PREFIX} ${WORK_DIR})
run_step(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})

configure_without_warnings(${SOURCE_DIR} ${WORK_DIR})
run_step(${CMAKE_COMMAND} --build ${WORK_DIR})
run_step(${WORK_DIR}/consumer)
if(NOT step_output MATCHES "oxArray_of<double,ox_scalar,ox_full,false>\nstring parameter 14: 5 units\nobject parameter 15: consumer.Counter\ntallyCount: 3\nthe variant takes an object of class 'consumer.Tally' [^\n]*\nbuffer of 2\n")
  message(FATAL_ERROR "unexpected consumer output: ${step_output}")
endif()
message(STATUS "consumer printed: ${step_output}")

# The installed tools find their installation root from where they sit, not from the
# environment of the build tree.
set(installed ${CMAKE_COMMAND} -E env --unset=ORVEX_ROOT)
set(library ${WORK_DIR}/consumerlib)
string(TIMESTAMP started "%s")
run_step(${installed} ${PREFIX}/bin/orvex new consumerlib ${library})
# It names the installation it belongs to as the prefix to build against.
if(NOT step_output MATCHES "wrote the library consumerlib in .*\n  cmake -S [^\n]* -DCMAKE_PREFIX_PATH=/[^\n]*\n"
   OR step_output MATCHES "<where builtin2 is installed>")
  message(FATAL_ERROR "unexpected output of orvex new: ${step_output}")
endif()
configure_without_warnings(${library} ${library}/build)
run_step(${CMAKE_COMMAND} --build ${library}/build)
run_step(${installed} ${CMAKE_CTEST_COMMAND} --test-dir ${library}/build --output-on-failure)
file(WRITE ${WORK_DIR}/first-call.orvex "x = consumerlib_scale([1 2 3], 2)\ny = plus(x, 1)\n")
execute_process(COMMAND ${installed} ${PREFIX}/bin/orvex --bundles ${library}/build/modules ${WORK_DIR}/first-call.orvex
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
string(TIMESTAMP finished "%s")
if(NOT rc EQUAL 0 OR NOT out MATCHES "x = \\[2 4 6\\]\n>> y = plus\\(x, 1\\)\ny = \\[3 5 7\\]" OR NOT err STREQUAL "")
  message(FATAL_ERROR "the new library and the sample library in the installed orvex (${rc}):\n${out}\n${err}")
endif()
math(EXPR seconds "${finished} - ${started}")
message(STATUS "orvex new to the first call, built against the installed package: ${seconds} s")
