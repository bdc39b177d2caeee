# Installs into a prefix, moves it, and builds an outside project with the installed files.
set(first ${WORK_DIR}/first)
set(moved ${WORK_DIR}/moved/to)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR}/moved)

# run(COMMAND...): stores the output in `output`; a failure ends the test.
function(run)
  execute_process(COMMAND ${ARGV} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGV}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(want text)
  if(NOT output MATCHES "${text}")
    message(FATAL_ERROR "'${text}' was wanted in:\n${output}")
  endif()
endfunction()

# build_project(FOLDER NAME)
function(build_project folder name)
  run(${CMAKE_COMMAND} -S ${folder} -B ${WORK_DIR}/${name} -G ${GENERATOR}
      -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${moved}
      -DCppMicroServices_DIR=${RUNTIME_DIR})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/${name})
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${first} --strip)
file(RENAME ${first} ${moved})

build_project(${OUTSIDE_DIR} outside)
run(${WORK_DIR}/outside/in_process ${EXAMPLES_DIR} radio.GainControl)
want("classdef GainControl < velum.System & radio.Tuned")

if(EXISTS ${moved}/bin/soca)
  foreach(file man/man1/soca.1.gz bash-completion/completions/soca zsh/site-functions/_soca
               fish/vendor_completions.d/soca.fish)
    if(NOT EXISTS ${moved}/share/${file})
      message(FATAL_ERROR "share/${file} was not installed")
    endif()
  endforeach()
  run(${moved}/bin/soca update -p ${EXAMPLES_DIR} radio.GainControl)
  want("classdef GainControl < velum.System & radio.Tuned")
  if(SELF_CONTAINED)
    # The program must run without the platform and the libraries that take long to load.
    file(COPY ${moved}/bin/soca DESTINATION ${WORK_DIR}/alone)
    run(ldd ${WORK_DIR}/alone/soca)
    if(output MATCHES "not found|soca_platform|libfmt|libstdc")
      message(FATAL_ERROR "the program needs more than it should:\n${output}")
    endif()
  endif()
endif()

if(RUNTIME_DIR)
  build_project(${EXAMPLES_DIR}/client client)
  run(${WORK_DIR}/client/soca_client ${EXAMPLES_DIR} radio.GainControl)
  want("GainControl.vlm \\(updated\\)")
endif()

# The dependencies of the package are read from the linked libraries (Debian: dpkg-dev).
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
  run(${CMAKE_CPACK_COMMAND} -G DEB --config ${BUILD_DIR}/CPackConfig.cmake -B ${WORK_DIR}/package)
  file(GLOB package ${WORK_DIR}/package/*.deb)
  run(dpkg-deb --field ${package} Depends)
  want("libc6 .*libfmt.*libstdc\\+\\+6 ")
  run(dpkg-deb --contents ${package})
  want("/usr/share/man/man1/soca\\.1\\.gz")
  want("/usr/share/zsh/(vendor-completions|site-functions)/_soca")
endif()
