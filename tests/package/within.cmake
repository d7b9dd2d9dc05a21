# Builds and runs a host that has this project as a subfolder, and what it does not link is not
# built. Called with PROJECT, COMPILER and FOLDER.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed: ${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${FOLDER})
run(Configuring ${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR}/within -B ${FOLDER}
    -DSTRANDVIEW=${PROJECT} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=Debug)
run(Building ${CMAKE_COMMAND} --build ${FOLDER})
file(GLOB_RECURSE library ${FOLDER}/*libStrandview.so*)
if(library)
  message(FATAL_ERROR "The scene-graph library is built, too: ${library}")
endif()
run(Running ${FOLDER}/curvature ${PROJECT}/data/helix.txt)
if(NOT output MATCHES "^(0.961928\n)+$")
  message(FATAL_ERROR "The host printed: ${output}")
endif()
