# Makes OUTPUT, a source file that holds the texts of YANG modules, for a header that declares their embedded_modules().
#   embed_modules(OUTPUT NAMESPACE HEADER TEXT...)
set(embed_script "${CMAKE_CURRENT_LIST_DIR}/embed.cmake" CACHE INTERNAL "")
function(embed_modules output namespace header)
  add_custom_command(
    OUTPUT "${output}"
    COMMAND "${CMAKE_COMMAND}" "-DTEXTS=${ARGN}" "-DOUTPUT=${output}" "-DNAMESPACE=${namespace}" "-DHEADER=${header}"
            -P "${embed_script}"
    DEPENDS ${ARGN} "${embed_script}"
    COMMENT "Embedding YANG modules"
    VERBATIM)
endfunction()
