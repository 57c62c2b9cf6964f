# What is installed, and where: find_package(bda) gives an outside project bda::bda and bda::platform.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Libraries and program side by side in one tree, found without LD_LIBRARY_PATH before and after installation.
if(PROJECT_IS_TOP_LEVEL AND CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
  set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}:$ORIGIN")
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/bda)
install(EXPORT bda-targets NAMESPACE bda:: DESTINATION ${package_dir})
configure_package_config_file(cmake/bdaConfig.cmake.in bdaConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(bdaConfigVersion.cmake VERSION ${BDA_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/bdaConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/bdaConfigVersion.cmake
        DESTINATION ${package_dir})

# bda_install_library(target folder): a library and its headers.
function(bda_install_library target)
  install(TARGETS ${target} EXPORT bda-targets)
  install(DIRECTORY include/bda DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endfunction()
