# find_package(bda) gives an outside project bda::bda and bda::platform.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/bda)
install(EXPORT bda-targets NAMESPACE bda:: DESTINATION ${package_dir})
configure_package_config_file(cmake/bdaConfig.cmake.in bdaConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(bdaConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/bdaConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/bdaConfigVersion.cmake
        DESTINATION ${package_dir})
