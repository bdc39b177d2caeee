# Warnings and sanitizers for every target of ours; a target links soca_options privately.
add_library(soca_options INTERFACE)
target_compile_options(
  soca_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                         -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
                         # Who names fields leaves the others to their defaults on purpose.
                         -Wno-missing-field-initializers
                         # Calls inside the shared library need no detour through its symbol table.
                         -fno-semantic-interposition)

if(SOCA_SANITIZE)
  # For all targets alike: a sanitized library and a plain one do not mix.
  add_compile_options(-fsanitize=${SOCA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SOCA_SANITIZE})
endif()

if(SOCA_BUILD_FUZZERS)
  # The fuzzers see which code an input reaches.
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()

# A file that was compiled before, in whatever build folder, is taken from the cache.
find_program(SOCA_CCACHE ccache)
mark_as_advanced(SOCA_CCACHE)
if(SOCA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${SOCA_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Lets the cache see which precompiled header a file was compiled with.
    add_compile_options(-fpch-preprocess)
  endif()
endif()
