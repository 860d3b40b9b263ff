# builtin2_add_bundle(<target> MANIFEST <manifest.json> OUTPUT_DIRECTORY <dir>
#     [INSTALL_DESTINATION <dir>] SOURCES ... [LIBS ...])
# Builds a bundle: a MODULE library named as the manifest's "bundle"."library" says, put in
# <dir> beside a copy of the manifest, so that <dir> can be installed as a bundle directory.
# The manifest is read here so that the library's file name cannot drift from it.
function(builtin2_add_bundle target)
  cmake_parse_arguments(arg "" "MANIFEST;OUTPUT_DIRECTORY;INSTALL_DESTINATION" "SOURCES;LIBS" ${ARGN})
  get_filename_component(manifest ${arg_MANIFEST} ABSOLUTE)
  file(READ ${manifest} manifest_text)
  string(JSON library_name ERROR_VARIABLE json_error GET "${manifest_text}" bundle library)
  if(json_error)
    message(FATAL_ERROR "bundle ${target}: ${manifest} has no \"bundle\".\"library\": ${json_error}")
  endif()

  add_library(${target} MODULE ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE cppmicroservices ${arg_LIBS})
  # A bundle built by another project names its sources relative to that project.
  builtin2_map_source_prefix(${target})
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME ${library_name}
    LIBRARY_OUTPUT_DIRECTORY ${arg_OUTPUT_DIRECTORY})
  configure_file(${manifest} ${arg_OUTPUT_DIRECTORY}/manifest.json COPYONLY)

  if(arg_INSTALL_DESTINATION)
    file(RELATIVE_PATH to_lib /${arg_INSTALL_DESTINATION} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_lib}")
    install(TARGETS ${target} LIBRARY DESTINATION ${arg_INSTALL_DESTINATION})
    install(FILES ${manifest} DESTINATION ${arg_INSTALL_DESTINATION} RENAME manifest.json)
  endif()
endfunction()
