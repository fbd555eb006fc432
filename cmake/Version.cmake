# The version every program prints with --version: the VERSION of the project() call, handed to
# the mains through one generated header so that only they rebuild when it changes.
configure_file(${CMAKE_SOURCE_DIR}/cmake/VocabrixVersion.h.in ${CMAKE_BINARY_DIR}/generated/VocabrixVersion.h @ONLY)

set(VOCABRIX_PROGRAMS vocabrix vocabrix-cli vocabrix-ibtool vocabrix-nibtool)

# Gives the programs defined so far the header; called again once the application is defined.
function(vocabrix_add_version_header)
  foreach(program ${VOCABRIX_PROGRAMS})
    if(TARGET ${program})
      target_include_directories(${program} PRIVATE ${CMAKE_BINARY_DIR}/generated)
    endif()
  endforeach()
endfunction()
vocabrix_add_version_header()
