# Qwt for Qt 5, as the target Qwt::Qwt. Its pkg-config file asks for development files of parts of
# Qt that neither Qwt's package brings nor this project needs, so that it is found by its files.
find_path(QWT_INCLUDE_DIR qwt_plot.h PATH_SUFFIXES qwt qwt-qt5 qwt6-qt5 qt5/qwt)
find_library(QWT_LIBRARY NAMES qwt-qt5 qwt6-qt5 qwt)
mark_as_advanced(QWT_INCLUDE_DIR QWT_LIBRARY)

if(QWT_INCLUDE_DIR AND EXISTS "${QWT_INCLUDE_DIR}/qwt_global.h")
  file(STRINGS "${QWT_INCLUDE_DIR}/qwt_global.h" qwt_version_line
    REGEX "^#define[ \t]+QWT_VERSION_STR[ \t]+\"")
  string(REGEX REPLACE ".*\"([0-9.]+)\".*" "\\1" Qwt_VERSION "${qwt_version_line}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Qwt
  REQUIRED_VARS QWT_LIBRARY QWT_INCLUDE_DIR
  VERSION_VAR Qwt_VERSION)

if(Qwt_FOUND AND NOT TARGET Qwt::Qwt)
  add_library(Qwt::Qwt UNKNOWN IMPORTED)
  set_target_properties(Qwt::Qwt PROPERTIES
    IMPORTED_LOCATION "${QWT_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${QWT_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES Qt5::Widgets)
endif()
