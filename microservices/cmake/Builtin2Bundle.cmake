# builtin2_add_bundle(<target> MANIFEST <manifest.json> OUTPUT_DIRECTORY <dir>
#     [INSTALL_DESTINATION <dir>] SOURCES ... [LIBS ...])
# Builds a bundle: a MODULE library named as the manifest's "bundle"."library" says, put in
# <dir> beside a copy of the manifest, so that <dir> can be loaded (orvex --bundles) and
# installed as a bundle directory. The manifest is read here so that the library's file
# name cannot drift from it.
#
# In builtin2's own build the bundle links the module framework and LIBS. In an author's
# project, after find_package(builtin2), it links builtin2::builtin2, which brings the
# framework, the host libraries and their headers: a defining library needs nothing else.
# INSTALL_DESTINATION is relative to the install prefix; the installed bundle finds
# builtin2's libraries beside it under the same prefix, or where the package was found.
include_guard(GLOBAL)
if(NOT COMMAND builtin2_map_source_prefix)
  include(${CMAKE_CURRENT_LIST_DIR}/Builtin2SourcePrefix.cmake)
endif()

function(builtin2_add_bundle target)
  cmake_parse_arguments(arg "" "MANIFEST;OUTPUT_DIRECTORY;INSTALL_DESTINATION" "SOURCES;LIBS" ${ARGN})
  foreach(required MANIFEST OUTPUT_DIRECTORY SOURCES)
    if(NOT arg_${required})
      message(FATAL_ERROR "builtin2_add_bundle(${target}): ${required} is missing")
    endif()
  endforeach()
  get_filename_component(manifest ${arg_MANIFEST} ABSOLUTE)
  if(NOT EXISTS ${manifest})
    message(FATAL_ERROR "builtin2_add_bundle(${target}): no manifest at ${manifest}")
  endif()
  file(READ ${manifest} manifest_text)
  string(JSON library_name ERROR_VARIABLE json_error GET "${manifest_text}" bundle library)
  if(json_error)
    message(FATAL_ERROR "bundle ${target}: ${manifest} has no \"bundle\".\"library\": ${json_error}")
  endif()

  add_library(${target} MODULE ${arg_SOURCES})
  if(TARGET cppmicroservices)
    target_link_libraries(${target} PRIVATE cppmicroservices ${arg_LIBS})
  else()
    target_link_libraries(${target} PRIVATE builtin2::builtin2 ${arg_LIBS})
  endif()
  # A bundle built by another project names its sources relative to that project.
  builtin2_map_source_prefix(${target})
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME ${library_name}
    LIBRARY_OUTPUT_DIRECTORY ${arg_OUTPUT_DIRECTORY})
  configure_file(${manifest} ${arg_OUTPUT_DIRECTORY}/manifest.json COPYONLY)

  if(arg_INSTALL_DESTINATION)
    set(libdir ${CMAKE_INSTALL_LIBDIR})
    if(NOT libdir)
      set(libdir lib)
    endif()
    file(RELATIVE_PATH to_lib /${arg_INSTALL_DESTINATION} /${libdir})
    set(rpath "$ORIGIN/${to_lib}")
    if(DEFINED BUILTIN2_LIBRARY_DIR)
      list(APPEND rpath ${BUILTIN2_LIBRARY_DIR})
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${rpath}")
    install(TARGETS ${target} LIBRARY DESTINATION ${arg_INSTALL_DESTINATION})
    install(FILES ${manifest} DESTINATION ${arg_INSTALL_DESTINATION} RENAME manifest.json)
  endif()
endfunction()
