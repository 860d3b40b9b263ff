# Script mode: install the build into PREFIX, then run the service tests so that every
# library, and hence the installation root, comes from PREFIX.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
                RESULT_VARIABLE rc OUTPUT_QUIET ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "installing into ${PREFIX} failed (${rc}):\n${err}")
endif()
if(NOT EXISTS ${PREFIX}/bin/lnxv64/builtinservices/manifest.json)
  message(FATAL_ERROR "the builtin-services bundle was not installed under ${PREFIX}/bin/lnxv64")
endif()
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env --unset=ORVEX_ROOT
          LD_LIBRARY_PATH=${PREFIX}/${LIBDIR} BUILTIN2_EXPECTED_ROOT=${PREFIX}
          ${TEST_BINARY} --gtest_filter=BuiltinServices.*:StringTraits.WriteScalarStringsWhenTheServiceIsThere
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the service tests failed against ${PREFIX} (${rc}):\n${out}\n${err}")
endif()
