# Installation in three components: libraries, development files and tools. `cmake --workflow --preset package` makes
# Debian packages of them in build/package/packages.

include(CMakePackageConfigHelpers)

# Manual pages and change logs are installed compressed, with the same bytes every time.
function(install_compressed file destination name component)
  set(compressed ${PROJECT_BINARY_DIR}/compressed/${component}/${name}.gz)
  add_custom_command(OUTPUT ${compressed} DEPENDS ${PROJECT_SOURCE_DIR}/${file} VERBATIM
    COMMAND sh -c "mkdir -p $(dirname \"$2\") && gzip -9nc \"$1\" >\"$2\"" sh ${PROJECT_SOURCE_DIR}/${file} ${compressed})
  add_custom_target(compress-${component}-${name} ALL DEPENDS ${compressed})
  install(FILES ${compressed} DESTINATION ${destination} COMPONENT ${component})
endfunction()

install(TARGETS QvGps QvFramework GpsHal EXPORT QvGpsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Gps COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
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
  foreach(tool gps-decode gps-monitor receiver-sim)
    install_compressed(docs/man/${tool}.1 ${CMAKE_INSTALL_MANDIR}/man1 ${tool}.1 tools)
  endforeach()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_NAME qvgps)
set(CPACK_PACKAGE_VENDOR "QvGps developers")
set(CPACK_PACKAGE_CONTACT "QvGps developers <maintainers@qvgps.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)  # whatever the umask of the sources was
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/platform)

set(same_version "libqvgps1 (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqvgps1)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
configure_file(cmake/debian/shlibs.in ${PROJECT_BINARY_DIR}/shlibs @ONLY)
# CPack writes a postinst and a postrm that call ldconfig unless they are listed here. Neither exists, so that the package
# has none: the trigger updates the loader's cache.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/shlibs ${PROJECT_SOURCE_DIR}/cmake/debian/triggers
  ${PROJECT_BINARY_DIR}/postinst ${PROJECT_BINARY_DIR}/postrm)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "GPS service library of an in-vehicle unit\n\
Receives from a u-blox 7c, delivers raw sentences and parsed records to its\n\
listeners, converts between the Tokyo datum and WGS84, and shares the latest\n\
location between processes.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqvgps-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "GPS service library of an in-vehicle unit - development files\n\
Headers, and the files by which CMake and pkg-config find the library.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qvgps-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "GPS service library of an in-vehicle unit - tools\n\
A live monitor of the service, a decoder of captured streams, and a simulated\n\
receiver on a pseudo-terminal.")

foreach(component library development tools)
  string(TOUPPER ${component} upper)
  set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  if(component STREQUAL tools AND NOT QVGPS_BUILD_TOOLS)
    continue()
  endif()
  install_compressed(CHANGELOG.md ${documents} changelog ${component})
  install_compressed(cmake/debian/changelog ${documents} changelog.Debian ${component})
  install(FILES cmake/debian/copyright DESTINATION ${documents} COMPONENT ${component})
endforeach()
include(CPack)
