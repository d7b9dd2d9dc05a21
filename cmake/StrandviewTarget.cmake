# How every target of this project is compiled. Nothing here leaks into a host
# that uses the libraries: all of it is private to the targets.

# Assertions are part of the interface, so no build type may remove them.
foreach(config RELEASE RELWITHDEBINFO MINSIZEREL)
  string(REGEX REPLACE "(^| )-DNDEBUG( |$)" " " CMAKE_CXX_FLAGS_${config} "${CMAKE_CXX_FLAGS_${config}}")
endforeach()

add_library(strandview_options INTERFACE)
target_compile_features(strandview_options INTERFACE cxx_std_17)
target_compile_options(strandview_options INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
  $<$<BOOL:${STRANDVIEW_WARNINGS_AS_ERRORS}>:-Werror>
  # Source names in assertions and debug information are relative: src/SoRod.cpp.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
  # The meshes promise the doubles of their formulas: no fused multiply-add.
  -ffp-contract=off
  # Nothing reads errno after a square root, which is one instruction then.
  -fno-math-errno)
if(STRANDVIEW_SANITIZE)
  target_compile_options(strandview_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(strandview_options INTERFACE -fsanitize=address,undefined)
endif()

function(strandview_compile target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:strandview_options>)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# strandview_library(NAME INCLUDE_FOLDER SUBFOLDER sources...)
# A shared library Strandview::NAME. Its headers are found below INCLUDE_FOLDER
# in the build tree and are installed to include/strandview/SUBFOLDER.
function(strandview_library name include_folder subfolder)
  include(GenerateExportHeader)
  add_library(${name} SHARED ${ARGN})
  add_library(Strandview::${name} ALIAS ${name})
  strandview_compile(${name})
  target_compile_features(${name} PUBLIC cxx_std_17)
  generate_export_header(${name}
    EXPORT_FILE_NAME ${PROJECT_BINARY_DIR}/include/${subfolder}/${name}Export.h)
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    INSTALL_RPATH "$ORIGIN")
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${include_folder}>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/strandview>)
  install(TARGETS ${name} EXPORT StrandviewTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES ${PROJECT_BINARY_DIR}/include/${subfolder}/${name}Export.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/strandview/${subfolder})
endfunction()

# strandview_headers(SUBFOLDER headers...): the public headers of a library.
function(strandview_headers subfolder)
  install(FILES ${ARGN} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/strandview/${subfolder})
endfunction()

# strandview_room(NAME SOURCES files... HEADERS files... [PUBLIC targets...] [PRIVATE targets...])
# A shared library Strandview::NAME of the namespace strandview, of the folder that it is called in.
# Its headers are <strandview/NAME/X.h>, in the build tree and installed.
function(strandview_room name)
  include(GenerateExportHeader)
  cmake_parse_arguments(arg "" "" "SOURCES;HEADERS;PUBLIC;PRIVATE" ${ARGN})
  set(target strandview_${name})
  add_library(${target} SHARED ${arg_SOURCES})
  add_library(Strandview::${name} ALIAS ${target})
  strandview_compile(${target})
  target_compile_features(${target} PUBLIC cxx_std_17)
  set(prefix ${PROJECT_BINARY_DIR}/include/strandview)
  generate_export_header(${target} EXPORT_FILE_NAME ${prefix}/${name}Export.h)
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${prefix}/${name} SYMBOLIC)
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    INSTALL_RPATH "$ORIGIN")
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
  install(TARGETS ${target} EXPORT StrandviewTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES ${prefix}/${name}Export.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/strandview)
  foreach(header IN LISTS arg_HEADERS)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/strandview/${name}/${folder})
  endforeach()
endfunction()
