# Warnings and sanitizers for all targets of this project; a target links soca_options privately.
add_library(soca_options INTERFACE)
target_compile_options(
  soca_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                         -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
                         # A designated initialiser leaves the other fields to their defaults on
                         # purpose.
                         -Wno-missing-field-initializers
                         # Calls inside the shared library need no jump through its symbol table.
                         -fno-semantic-interposition)

if(SOCA_SANITIZE)
  # For all targets, because sanitized and plain libraries cannot be mixed.
  add_compile_options(-fsanitize=${SOCA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SOCA_SANITIZE})
endif()

if(SOCA_BUILD_FUZZERS)
  # Lets the fuzzers see which code an input reaches.
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()

# Uses the results of earlier compilations, of any build folder.
find_program(SOCA_CCACHE ccache)
mark_as_advanced(SOCA_CCACHE)
if(SOCA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${SOCA_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Lets the cache see the precompiled header with which a file is compiled.
    add_compile_options(-fpch-preprocess)
  endif()
endif()
