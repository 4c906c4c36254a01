# Reads the table of the native models and sets in the caller's scope, a list element per model in the table's order:
#   native_modules  the names of the YANG modules
#   native_names    their part of the exported names
#   native_stems    the stems of their files
function(read_native_models)
  set(table "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/src/native_models.def")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${table}")
  file(STRINGS "${table}" rows REGEX "^YMAP_NATIVE_MODEL")
  foreach(row IN LISTS rows)
    if(NOT row MATCHES "^YMAP_NATIVE_MODEL\\([a-z_]+, *\"([^\"]+)\", *([a-z0-9]+), *([a-z0-9_]+), *[a-z]+\\)$")
      message(FATAL_ERROR "${table}: not a row: ${row}")
    endif()
    list(APPEND native_modules "${CMAKE_MATCH_1}")
    list(APPEND native_names "${CMAKE_MATCH_2}")
    list(APPEND native_stems "${CMAKE_MATCH_3}")
  endforeach()
  return(PROPAGATE native_modules native_names native_stems)
endfunction()
