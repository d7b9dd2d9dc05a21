# Installs the build into an empty prefix by script/install, moves the prefix, and builds and
# runs the host projects against it. Called with BUILD, FOLDER, FLAGS, what the hosts are
# compiled and linked with, and PROGRAM, whether strandview is built.
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
set(expected "A host finds the library with cmake -DCMAKE_PREFIX_PATH=${FOLDER}/first\n")
if(PROGRAM)
  string(PREPEND expected "The program is ${FOLDER}/first/bin/strandview.\n")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "script/install printed: ${output}")
endif()
file(RENAME ${FOLDER}/first ${FOLDER}/prefix)
# Builds the project in that folder beside this file, and runs its program.
function(run_host folder)
  run("Configuring ${folder}" ${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR}/${folder}
      -B ${FOLDER}/${folder} -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH=${FOLDER}/prefix
      -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_EXE_LINKER_FLAGS=${FLAGS})
  run("Building ${folder}" ${CMAKE_COMMAND} --build ${FOLDER}/${folder})
  run("Running ${folder}" ${FOLDER}/${folder}/${ARGN})
  set(output "${output}" PARENT_SCOPE)
endfunction()

run_host(scene host)
# A tube of radius 0.5 along z from 0 to 2, its four columns on the axes.
if(NOT output STREQUAL "1 -0.5 0 0.5 2\n")
  message(FATAL_ERROR "The host printed: ${output}")
endif()

# A quarter of a circle of radius 4, whose ends take the curvature beside them.
file(WRITE ${FOLDER}/quarter.txt "4 0 0\n2.8284271247461903 2.8284271247461903 0\n0 4 0\n")
run_host(curvature curvature ${FOLDER}/quarter.txt)
if(NOT output STREQUAL "0.25\n0.25\n0.25\n")
  message(FATAL_ERROR "The host of the numbers printed: ${output}")
endif()
if(PROGRAM)
  file(GLOB_RECURSE notices ${FOLDER}/prefix/share/doc/*/THIRD-PARTY.txt)
  if(NOT notices)
    message(FATAL_ERROR "The notices of the program's colour maps are not installed")
  endif()
  run("The installed program" ${FOLDER}/prefix/bin/strandview --version)
endif()
