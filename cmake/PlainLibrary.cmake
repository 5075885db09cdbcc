# Libraries that come without a CMake module: korvex_plain_library(Hivex hivex.h hivex) makes the
# target Hivex::Hivex from a header and a library of that name, or ends the configuration.
include(FindPackageHandleStandardArgs)

function(korvex_plain_library name header library)
  string(TOUPPER "${name}" upper)
  find_path(${upper}_INCLUDE_DIR "${header}")
  find_library(${upper}_LIBRARY "${library}")
  set(${name}_FIND_REQUIRED TRUE)
  find_package_handle_standard_args(${name} NAME_MISMATCHED
    REQUIRED_VARS ${upper}_LIBRARY ${upper}_INCLUDE_DIR)
  add_library(${name}::${name} UNKNOWN IMPORTED GLOBAL)
  set_target_properties(${name}::${name} PROPERTIES
    IMPORTED_LOCATION "${${upper}_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${${upper}_INCLUDE_DIR}")
endfunction()
