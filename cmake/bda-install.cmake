# What is installed, and where, in components: runtime is what a program needs that uses the libraries, development what
# one needs to compile it; editor-runtime and editor-development are the same for the editor's library, and program is
# bda. Inside of somebody else's project, where these are anybody's words, they are bda-runtime, bda-development ...
set(BDA_COMPONENT "")
if(NOT PROJECT_IS_TOP_LEVEL)
  set(BDA_COMPONENT bda-)
endif()

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Libraries and program side by side in one tree, found without LD_LIBRARY_PATH before and after installation.
if(PROJECT_IS_TOP_LEVEL AND CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
  set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}:$ORIGIN")
endif()

# find_package(bda) gives an outside project bda::bda and bda::platform, and bda::editor where that is installed too.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/bda)
install(EXPORT bda-targets NAMESPACE bda:: DESTINATION ${package_dir} COMPONENT ${BDA_COMPONENT}development)
if(BDA_EDITOR)
  install(EXPORT bda-editor-targets NAMESPACE bda:: DESTINATION ${package_dir}
          COMPONENT ${BDA_COMPONENT}editor-development)
endif()
configure_package_config_file(cmake/bdaConfig.cmake.in bdaConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(bdaSameMinorVersion.cmake VERSION ${BDA_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/bdaConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/bdaSameMinorVersion.cmake
              cmake/bdaConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT ${BDA_COMPONENT}development)

# pkg-config knows the folders relative to its own files, so that what is installed can be moved.
set(pc_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH BDA_PC_TO_PREFIX ${pc_dir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" BDA_PC_TO_PREFIX ${BDA_PC_TO_PREFIX})
file(RELATIVE_PATH BDA_PC_TO_INCLUDE ${pc_dir} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
if(NOT BDA_IS_SHARED)
  set(BDA_PC_DEFINE " -DBDA_STATIC")
endif()

# bda_install_library(target [of]): a library, its headers and what pkg-config has to know, in cmake/<target>.pc.in. The
# components are runtime and development of `of`, as in "editor-".
function(bda_install_library target)
  set(component ${BDA_COMPONENT}${ARGV1})
  string(REGEX REPLACE "-$" "" export "bda-${ARGV1}")
  install(TARGETS ${target} EXPORT ${export}-targets
          RUNTIME COMPONENT ${component}runtime
          LIBRARY COMPONENT ${component}runtime NAMELINK_COMPONENT ${component}development
          ARCHIVE COMPONENT ${component}development)
  install(DIRECTORY include/bda DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${component}development)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${target}.pc.in ${target}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${target}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT ${component}development)
endfunction()

if(NOT BDA_DEBS)  # whose packages have their own form of it
  set(components runtime development)
  if(BDA_EDITOR)
    list(APPEND components editor-runtime editor-development program python)
  endif()
  foreach(component IN LISTS components)
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/bda COMPONENT ${BDA_COMPONENT}${component})
  endforeach()
endif()
