# Installs the build into an empty prefix by script/install, moves the prefix, and builds and
# runs the host project against it. Called with BUILD, FOLDER and FLAGS,
# what the host is compiled and linked with.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed: ${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${FOLDER})
run(Installing ${CMAKE_CURRENT_LIST_DIR}/../../script/install ${FOLDER}/first ${BUILD})
string(FIND "${output}" "The program is ${FOLDER}/first/bin/strandview.\n" place)
if(NOT place EQUAL 0)
  message(FATAL_ERROR "script/install printed: ${output}")
endif()
file(RENAME ${FOLDER}/first ${FOLDER}/prefix)
run(Configuring ${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR} -B ${FOLDER}/build
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH=${FOLDER}/prefix
    -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_EXE_LINKER_FLAGS=${FLAGS})
run(Building ${CMAKE_COMMAND} --build ${FOLDER}/build)
run(Running ${FOLDER}/build/host)
# A tube of radius 0.5 along z from 0 to 2, its four columns on the axes.
if(NOT output STREQUAL "1 -0.5 0 0.5 2\n")
  message(FATAL_ERROR "The host printed: ${output}")
endif()
run("The installed program" ${FOLDER}/prefix/bin/strandview --version)
