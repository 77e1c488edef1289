# Installation of the library for host programs that embed it: the headers
# under include/bsn (keeping the source tree's folders, so that the headers'
# own "bsn/..." and "platform/..." includes resolve against that directory),
# libbsn, the CMake package bsn (target bsn::bsn) and bsn.pc for pkg-config.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(BSN_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/bsn)
set(BSN_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/bsn)

set_target_properties(bsnlib PROPERTIES
  OUTPUT_NAME bsn
  EXPORT_NAME bsn
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
target_include_directories(bsnlib PUBLIC $<INSTALL_INTERFACE:${BSN_INSTALL_INCLUDEDIR}>)

# A shared library exports the library's namespaces and nothing else: the
# instantiations of the standard library, Boost and Eigen templates it holds
# stay private, so a host never binds to our copies of them.
get_target_property(BSN_LIBRARY_TYPE bsnlib TYPE)
if(BSN_LIBRARY_TYPE STREQUAL "SHARED_LIBRARY")
  set(BSN_EXPORT_MAP ${PROJECT_SOURCE_DIR}/cmake/bsnexports.map)
  target_link_options(bsnlib PRIVATE "LINKER:--version-script=${BSN_EXPORT_MAP}" "LINKER:--no-undefined")
  set_property(TARGET bsnlib APPEND PROPERTY LINK_DEPENDS ${BSN_EXPORT_MAP})
endif()

# Headers: every header under bsn/ and platform/, found when installing, so
# the headers of a new analysis are installed without further ado.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/bsn ${PROJECT_SOURCE_DIR}/platform
  DESTINATION ${BSN_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")

install(TARGETS bsnlib EXPORT bsnTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT bsnTargets NAMESPACE bsn:: DESTINATION ${BSN_INSTALL_CMAKEDIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/bsnConfig.cmake.in
  ${PROJECT_BINARY_DIR}/bsnConfig.cmake
  INSTALL_DESTINATION ${BSN_INSTALL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/bsnConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/bsnConfig.cmake ${PROJECT_BINARY_DIR}/bsnConfigVersion.cmake
  DESTINATION ${BSN_INSTALL_CMAKEDIR})

# bsn.pc finds its prefix from its own location, so the installed tree may
# be moved (or installed with cmake --install --prefix).
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(BSN_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(BSN_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
else()
  file(RELATIVE_PATH BSN_PC_UP "/root/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/root")
  string(REGEX REPLACE "/$" "" BSN_PC_UP "${BSN_PC_UP}")
  set(BSN_PC_PREFIX "\${pcfiledir}/${BSN_PC_UP}")
  set(BSN_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(BSN_PC_INCLUDEDIR "${BSN_INSTALL_INCLUDEDIR}")
else()
  set(BSN_PC_INCLUDEDIR "\${prefix}/${BSN_INSTALL_INCLUDEDIR}")
endif()
# A static libbsn brings its own dependencies to the host's link line.
if(BSN_LIBRARY_TYPE STREQUAL "SHARED_LIBRARY")
  set(BSN_PC_REQUIRES "eigen3 >= 3.3")
  set(BSN_PC_REQUIRES_PRIVATE "tinyxml2")
  set(BSN_PC_LIBS "-L\${libdir} -lbsn")
  set(BSN_PC_LIBS_PRIVATE "-pthread")
else()
  set(BSN_PC_REQUIRES "eigen3 >= 3.3, tinyxml2")
  set(BSN_PC_REQUIRES_PRIVATE "")
  set(BSN_PC_LIBS "-L\${libdir} -lbsn -pthread")
  set(BSN_PC_LIBS_PRIVATE "")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/bsn.pc.in ${PROJECT_BINARY_DIR}/bsn.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/bsn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The command-line host, installed beside the library; it finds a shared
# libbsn relative to itself.
function(bsn_install_host target)
  file(RELATIVE_PATH up "/root/${CMAKE_INSTALL_BINDIR}" "/root/${CMAKE_INSTALL_LIBDIR}")
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${up}")
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()
