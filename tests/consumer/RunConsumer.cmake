# Script mode: install, configure the consumer, build it, run it.
function(run_step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "step failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(step_output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${PREFIX} ${WORK_DIR})
run_step(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
run_step(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR} -G ${GENERATOR}
         -DCMAKE_PREFIX_PATH=${PREFIX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run_step(${CMAKE_COMMAND} --build ${WORK_DIR})
run_step(${WORK_DIR}/consumer)
if(NOT step_output MATCHES "oxArray_of<double,ox_scalar,ox_full,false>\nstring parameter 14: 5 units\nobject parameter 15: consumer.Counter\ntallyCount: 3\nthe variant takes an object of class 'consumer.Tally' [^\n]*\nbuffer of 2\n")
  message(FATAL_ERROR "unexpected consumer output: ${step_output}")
endif()
message(STATUS "consumer printed: ${step_output}")
