# CMAKE_PROJECT_TOP_LEVEL_INCLUDES: a compiler and CMake are all that a guest needs.
macro(bda_refuse_packages method package)
  message(FATAL_ERROR "looks for the package ${package}")
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER bda_refuse_packages SUPPORTED_METHODS FIND_PACKAGE)
