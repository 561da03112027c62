# Installs DataComLib and the mediator client for other daemons to build on,
# and makes their Debian packages (included from Install.cmake, before CPack):
#   component datacom             -> libdatacom2             lib/<arch>/libdatacom.so.2*
#   component datacom_dev         -> libdatacom-dev          headers (datacom/, and chanmgr/: the channel
#                                                            manager's command and event names), libdatacom.so,
#                                                            CMake and pkg-config files
#   component tarnevelclient      -> libtarnevelclient2      lib/<arch>/libtarnevelclient.so.2*
#   component tarnevelclient_dev  -> libtarnevelclient-dev   headers, libtarnevelclient.so, datacom's CMake package names it
# The CMake package (find_package(DataComLib 2.0 CONFIG)) gives DataComLib::datacom
# and DataComLib::tarnevelclient; every path in it and in the .pc files is
# relative to where it lies, so the tree works from any prefix.
include(CMakePackageConfigHelpers)

set(_cmakeDir ${CMAKE_INSTALL_LIBDIR}/cmake/DataComLib)

install(TARGETS DataComLib EXPORT DataComLibTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT datacom NAMELINK_COMPONENT datacom_dev)
install(TARGETS TarnevelClientLib EXPORT TarnevelClientLibTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT tarnevelclient NAMELINK_COMPONENT tarnevelclient_dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/DataComLib/include/datacom
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT datacom_dev)
# The names a daemon uses to talk to the channel manager travel with the
# library's headers: such a daemon needs libdatacom-dev alone.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/ChannelManager/include/chanmgr
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT datacom_dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/TarnevelClientLib/include/tarnevel
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT tarnevelclient_dev)

# Each -dev package holds its own targets file; the config loads the mediator
# client's when its package is installed.
install(EXPORT DataComLibTargets NAMESPACE DataComLib:: DESTINATION ${_cmakeDir} COMPONENT datacom_dev)
install(EXPORT TarnevelClientLibTargets NAMESPACE DataComLib:: DESTINATION ${_cmakeDir}
        COMPONENT tarnevelclient_dev)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/templates/DataComLibConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/lib-package/DataComLibConfig.cmake
                              INSTALL_DESTINATION ${_cmakeDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lib-package/DataComLibConfigVersion.cmake
                                 VERSION ${SYSMGT_LIB_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lib-package/DataComLibConfig.cmake
              ${PROJECT_BINARY_DIR}/lib-package/DataComLibConfigVersion.cmake
        DESTINATION ${_cmakeDir} COMPONENT datacom_dev)

# pkg-config: prefix found from the .pc file's own place (${pcfiledir}).
file(RELATIVE_PATH _pcToPrefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" _pcToPrefix "${_pcToPrefix}")
set(PC_PREFIX "\${pcfiledir}/${_pcToPrefix}")
set(PC_CFLAGS "")
foreach(_definition ${SYSMGT_CONSUMER_DEFINITIONS})
  string(APPEND PC_CFLAGS " -D${_definition}")
endforeach()
foreach(_pc datacom tarnevelclient)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/templates/${_pc}.pc.in ${PROJECT_BINARY_DIR}/lib-package/${_pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/lib-package/${_pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT ${_pc}_dev)
endforeach()

# ---- Debian packages (library policy: the SONAME in the runtime package's name) ----
# The five packages share the tree's release version (CPACK_PACKAGE_VERSION),
# which is not the libraries' own (SYSMGT_LIB_VERSION, whose major is the
# SONAME): the -dev packages pin their runtime packages to that release.
set(_libVersion ${CPACK_PACKAGE_VERSION})
list(APPEND CPACK_COMPONENTS_ALL datacom datacom_dev tarnevelclient tarnevelclient_dev)
set(CPACK_DEBIAN_DATACOM_PACKAGE_NAME libdatacom${SYSMGT_LIB_SOVERSION})
set(CPACK_DEBIAN_DATACOM_DEV_PACKAGE_NAME libdatacom-dev)
set(CPACK_DEBIAN_TARNEVELCLIENT_PACKAGE_NAME libtarnevelclient${SYSMGT_LIB_SOVERSION})
set(CPACK_DEBIAN_TARNEVELCLIENT_DEV_PACKAGE_NAME libtarnevelclient-dev)
set(CPACK_DEBIAN_DATACOM_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_TARNEVELCLIENT_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DATACOM_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TARNEVELCLIENT_DEV_PACKAGE_SECTION libdevel)
# The first line of each description is the package's synopsis.
set(CPACK_COMPONENT_DATACOM_DESCRIPTION "Messaging and data library of the encoder appliance's daemons
DataComLib is the base of the appliance's management daemons: the data
holder with its worker thread, the messaging engine on the appliance's
local datagram sockets, the tabular and JSON dataset stores and the debug
log client.

This package holds the shared library libdatacom.so.2.")
set(CPACK_COMPONENT_DATACOM_DEV_DESCRIPTION "DataComLib development files
The headers (datacom/, and chanmgr/ with the channel manager's command
and event names), the link library, the CMake package DataComLib
(find_package(DataComLib 2.0 CONFIG) gives DataComLib::datacom) and the
pkg-config file datacom.pc: what a daemon of the appliance needs to build
on DataComLib.")
set(CPACK_COMPONENT_TARNEVELCLIENT_DESCRIPTION "Client of the encoder appliance's media mediator
The typed requests a daemon sends to the media mediator (component
parameters, the assembly, branch state, start and stop), each one command
through DataComLib's messaging engine.

This package holds the shared library libtarnevelclient.so.2.")
set(CPACK_COMPONENT_TARNEVELCLIENT_DEV_DESCRIPTION "Media mediator client development files
The headers (tarnevel/), the link library, the CMake targets
(DataComLib::tarnevelclient, through find_package(DataComLib)) and the
pkg-config file tarnevelclient.pc.")
# All five packages are built from this one tree (the changelog they carry is its).
foreach(_component DATACOM DATACOM_DEV TARNEVELCLIENT TARNEVELCLIENT_DEV)
  set(CPACK_DEBIAN_${_component}_PACKAGE_SOURCE channel-manager)
endforeach()
foreach(_component datacom datacom_dev tarnevelclient tarnevelclient_dev)
  string(TOUPPER ${_component} _upper)
  sysmgt_debian_docs(${_component} ${CPACK_DEBIAN_${_upper}_PACKAGE_NAME})
endforeach()

# The runtime packages' control files: shlibs, so that a daemon built against
# them depends on them (CPack writes it; it reads only the global switch), and
# the ldconfig trigger, through which dpkg refreshes the loader's cache once
# per run instead of a maintainer script calling ldconfig. CPack adds such
# scripts to every package with a library under /usr/lib; DebianTriggers.cmake
# drops them again from the packages that activate the trigger (CPack runs it
# from CMake 3.19 on; an older one leaves the scripts, which work, and lintian
# warns).
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
file(WRITE ${PROJECT_BINARY_DIR}/lib-package/triggers "activate-noawait ldconfig\n")
foreach(_component DATACOM TARNEVELCLIENT)
  set(CPACK_DEBIAN_${_component}_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/lib-package/triggers)
  set(CPACK_DEBIAN_${_component}_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endforeach()
list(APPEND CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/DebianTriggers.cmake)
# libtarnevelclient2 needs libdatacom2 from this same build, which dpkg-shlibdeps
# finds in the build tree but cannot look up in the package database: named here.
list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_TARNEVELCLIENT_PACKAGE_DEPENDS "libdatacom${SYSMGT_LIB_SOVERSION} (= ${_libVersion})")
set(CPACK_DEBIAN_DATACOM_DEV_PACKAGE_DEPENDS "libdatacom${SYSMGT_LIB_SOVERSION} (= ${_libVersion}), libjsoncpp-dev")
set(CPACK_DEBIAN_TARNEVELCLIENT_DEV_PACKAGE_DEPENDS
    "libtarnevelclient${SYSMGT_LIB_SOVERSION} (= ${_libVersion}), libdatacom-dev (= ${_libVersion})")
foreach(_component DATACOM_DEV TARNEVELCLIENT_DEV)
  set(CPACK_DEBIAN_${_component}_PACKAGE_SHLIBDEPS OFF)
endforeach()
