# hivex, the library that reads and writes NT registry hives: the target Hivex::Hivex.
find_path(HIVEX_INCLUDE_DIR hivex.h)
find_library(HIVEX_LIBRARY hivex)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Hivex REQUIRED_VARS HIVEX_LIBRARY HIVEX_INCLUDE_DIR)
if(Hivex_FOUND AND NOT TARGET Hivex::Hivex)
  add_library(Hivex::Hivex UNKNOWN IMPORTED)
  set_target_properties(Hivex::Hivex PROPERTIES
    IMPORTED_LOCATION "${HIVEX_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${HIVEX_INCLUDE_DIR}")
endif()
