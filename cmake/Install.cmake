# What is installed, in three components: the libraries, what a client is built with, and the tools.

include(CMakePackageConfigHelpers)

install(TARGETS QvGps QvFramework GpsHal EXPORT QvGpsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(DIRECTORY src/Public/Gps/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Gps COMPONENT development
  FILES_MATCHING PATTERN "*.h" PATTERN private EXCLUDE)
install(FILES
  QvFramework/Foundation/QvSingleton.h
  platform/QvFramework/Foundation/QvDbgOutput.h
  platform/QvFramework/Foundation/QvSingletonFinalizer.h
  platform/QvFramework/Foundation/QvUncopyable.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/QvFramework/Foundation COMPONENT development)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/QvGps)
configure_package_config_file(cmake/QvGpsConfig.cmake.in ${PROJECT_BINARY_DIR}/QvGpsConfig.cmake
  INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QvGpsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QvGpsConfig.cmake ${PROJECT_BINARY_DIR}/QvGpsConfigVersion.cmake
  DESTINATION ${package_directory} COMPONENT development)
install(EXPORT QvGpsTargets NAMESPACE QvGps:: DESTINATION ${package_directory} COMPONENT development)

file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/qvgps.pc.in ${PROJECT_BINARY_DIR}/qvgps.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qvgps.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(QVGPS_BUILD_TOOLS)
  install(TARGETS gps-decode gps-monitor receiver-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(FILES docs/man/gps-decode.1 docs/man/gps-monitor.1 docs/man/receiver-sim.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qvgps)
set(CPACK_PACKAGE_VENDOR "QvGps developers")
set(CPACK_PACKAGE_CONTACT "QvGps developers <maintainers@qvgps.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "GPS service library of an in-vehicle unit")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/platform)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqvgps1)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "GPS service library of an in-vehicle unit")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqvgps-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "GPS service library of an in-vehicle unit: headers, CMake and pkg-config files")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libqvgps1 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qvgps-tools)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "Live monitor, log decoder and receiver simulator of the GPS service library")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libqvgps1 (= ${PROJECT_VERSION})")
include(CPack)
