# Warnings and sanitizers for all targets of this project; a target links soca_options privately.
add_library(soca_options INTERFACE)
target_compile_options(
  soca_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                         -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
                         # A designated initialiser leaves the other fields to their defaults on
                         # purpose.
                         -Wno-missing-field-initializers
                         # Calls inside the shared library need no jump through its symbol table.
                         -fno-semantic-interposition
                         # At -O3, GCC 12 takes lengths of strings that cannot occur for overflows.
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overread>
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
                         # In a precompiled header, clang loses where the C++ library turns this off.
                         $<$<CXX_COMPILER_ID:Clang>:-Wno-deprecated-declarations>)

# Every change is built by these compilers; others may have further warnings.
if("${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}" MATCHES "^(GNU 12|Clang 19)\\.")
  set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()

# For programs that run briefly, in the build or as tests: optimising them takes longer than it saves.
add_library(soca_short_run_options INTERFACE)
target_compile_options(soca_short_run_options INTERFACE -O0)
target_link_libraries(soca_short_run_options INTERFACE soca_options)

if(SOCA_SANITIZE)
  # For all targets, because sanitized and plain libraries cannot be mixed.
  add_compile_options(-fsanitize=${SOCA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SOCA_SANITIZE})
endif()

if(SOCA_BUILD_FUZZERS)
  # Lets the fuzzers see which code of the libraries an input reaches.
  add_compile_options(-fsanitize=fuzzer-no-link)
  target_compile_options(soca_short_run_options INTERFACE -fno-sanitize=fuzzer-no-link)
endif()

# Uses the results of earlier compilations, of any build folder.
find_program(SOCA_CCACHE ccache)
mark_as_advanced(SOCA_CCACHE)
if(SOCA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # The place of the sources does not matter, and precompiled headers are cached too.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      ${SOCA_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Lets the cache see the precompiled header with which a file is compiled.
    add_compile_options(-fpch-preprocess)
  elseif(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    # Precompiled headers differ only if the headers do.
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  endif()
endif()

# The headers of the C++ library that most files of the libraries include, compiled once for all.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/library_headers.cpp CONTENT "")
add_library(soca_library_headers OBJECT ${PROJECT_BINARY_DIR}/library_headers.cpp)
target_link_libraries(soca_library_headers PRIVATE soca_options)
target_precompile_headers(
  soca_library_headers PRIVATE <algorithm> <array> <functional> <map> <memory> <optional> <string>
                               <string_view> <unordered_map> <utility> <vector>)
