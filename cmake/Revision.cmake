# Writes a header with the commit of the sources, if it is known: they are the root of a git work
# tree, or from an archive that git made. The file changes only when the commit does.
#
#   cmake -D SOURCE_DIR=... -D OUTPUT=... -P Revision.cmake

# git replaces this by the commit when it makes an archive.
set(archived "$Format:%h$")

function(git)
  execute_process(
    COMMAND git -c safe.directory=${SOURCE_DIR} --no-optional-locks ${ARGV}
    WORKING_DIRECTORY ${SOURCE_DIR}
    OUTPUT_VARIABLE output RESULT_VARIABLE result ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  set(output "${output}" PARENT_SCOPE)
  set(result "${result}" PARENT_SCOPE)
endfunction()

set(revision "")
if(NOT archived MATCHES "Format")
  set(revision ${archived})
endif()

# The sources may be inside the work tree of another project.
git(rev-parse --show-toplevel)
file(REAL_PATH ${SOURCE_DIR} source_dir)
if(result EQUAL 0 AND output STREQUAL source_dir)
  git(rev-parse --short=12 HEAD)
  if(result EQUAL 0)
    set(revision ${output})
    git(status --porcelain --untracked-files=no)
    if(output)
      string(APPEND revision ", with changes that are not committed")
    endif()
  endif()
endif()

file(
  CONFIGURE
  OUTPUT ${OUTPUT}
  CONTENT
    "// Made by cmake/Revision.cmake.\n#pragma once\n\n#include <string_view>\n
namespace soca::cli {\n
// Empty if it is not known.\nconstexpr std::string_view revision = \"${revision}\";\n
}  // namespace soca::cli\n")
