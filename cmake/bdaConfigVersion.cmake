# Whether this version is what find_package asks for. A range is the word of whoever asks: he says himself what fits. One
# version fits as bdaSameMinorVersion.cmake has it.
include("${CMAKE_CURRENT_LIST_DIR}/bdaSameMinorVersion.cmake")
if(PACKAGE_FIND_VERSION_RANGE)
  set(PACKAGE_VERSION_COMPATIBLE TRUE)
  if(PACKAGE_VERSION VERSION_LESS PACKAGE_FIND_VERSION_MIN
     OR PACKAGE_VERSION VERSION_GREATER PACKAGE_FIND_VERSION_MAX
     OR (PACKAGE_FIND_VERSION_RANGE_MAX STREQUAL "EXCLUDE" AND PACKAGE_VERSION VERSION_EQUAL PACKAGE_FIND_VERSION_MAX))
    set(PACKAGE_VERSION_COMPATIBLE FALSE)
  endif()
endif()
