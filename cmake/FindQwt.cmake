# Finds Qwt built for Qt 5 and offers it as Qwt::Qwt.
find_path(Qwt_INCLUDE_DIR qwt_plot.h PATH_SUFFIXES qwt qwt-qt5 qt5/qwt)
find_library(Qwt_LIBRARY NAMES qwt-qt5)

if(Qwt_INCLUDE_DIR AND EXISTS "${Qwt_INCLUDE_DIR}/qwt_global.h")
  file(STRINGS "${Qwt_INCLUDE_DIR}/qwt_global.h" _version_line REGEX "define +QWT_VERSION_STR")
  string(REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+" Qwt_VERSION "${_version_line}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Qwt
  REQUIRED_VARS Qwt_LIBRARY Qwt_INCLUDE_DIR
  VERSION_VAR Qwt_VERSION
  HANDLE_VERSION_RANGE)

if(Qwt_FOUND AND NOT TARGET Qwt::Qwt)
  add_library(Qwt::Qwt UNKNOWN IMPORTED)
  set_target_properties(Qwt::Qwt PROPERTIES
    IMPORTED_LOCATION "${Qwt_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Qwt_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES Qt5::Widgets)
endif()
