# A short run spends most of its time on loading shared libraries and resolving their symbols.
# Therefore the program contains the platform, fmt and the C++ library, and loads only the C library
# and the allocator. The bundle, its clients and the tests use the shared platform.
#
# Libraries that are part of the program and of other targets link soca_PLATFORM and soca_FMT, which
# are shared or static depending on the target that links them.
include(CheckLinkerFlag)

set(self_contained OFF)
# A sanitizer needs the shared C++ library.
if(SOCA_SELF_CONTAINED AND NOT SOCA_SANITIZE)
  check_linker_flag(CXX "-static-libstdc++;-static-libgcc" SOCA_HAS_CXX_ARCHIVES)
  set(self_contained ${SOCA_HAS_CXX_ARCHIVES})
endif()

# soca_or_archive(VARIABLE SHARED ARCHIVE)
# Sets VARIABLE to ARCHIVE for a program that contains its libraries, and to SHARED for all others.
function(soca_or_archive variable shared archive)
  set(own $<BOOL:$<TARGET_PROPERTY:SOCA_SELF_CONTAINED>>)
  set(${variable}
      $<BUILD_INTERFACE:$<IF:${own},${archive},${shared}>>$<INSTALL_INTERFACE:${shared}>
      PARENT_SCOPE)
endfunction()
soca_or_archive(soca_PLATFORM soca_platform soca_platform_archive)

# Debian has no archive of fmt. The one built here matches this version; with another version the
# shared library is linked, which also needs the shared C++ library.
get_target_property(fmt_type fmt::fmt TYPE)
set(soca_FMT fmt::fmt)
if(self_contained AND fmt_type STREQUAL SHARED_LIBRARY)
  if(fmt_VERSION VERSION_GREATER_EQUAL 9 AND fmt_VERSION VERSION_LESS 10)
    soca_or_archive(soca_FMT fmt::fmt soca_fmt_archive)
    add_library(soca_fmt_archive STATIC EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/cmake/FmtArchive.cpp)
    target_link_libraries(soca_fmt_archive PRIVATE soca_options)
  else()
    message(STATUS "fmt ${fmt_VERSION} is linked as a shared library, and so is the C++ library")
    set(self_contained OFF)
  endif()
endif()

# soca_hold_libraries(PROGRAM)
# Makes the program contain its libraries, if they are available as archives.
function(soca_hold_libraries program)
  if(self_contained)
    set_target_properties(${program} PROPERTIES SOCA_SELF_CONTAINED ON SKIP_BUILD_RPATH ON)
    target_link_options(${program} PRIVATE -static-libstdc++ -static-libgcc -Wl,--gc-sections)
  endif()
endfunction()
