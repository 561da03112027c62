# Install rules and the Debian package (CPack).
#   cmake --install build [--prefix DIR]
#   (cd build && cpack -G DEB)      # configure with -DCMAKE_INSTALL_PREFIX=/usr for a device image
# bin/: the daemon and the tools; the factory datasets to <sysconfdir>/sysmgt,
# the init script to <sysconfdir>/init.d and the systemd unit to
# lib/systemd/system. A /usr prefix keeps its configuration in /etc (the GNU
# rule); any other prefix keeps it under the prefix, so an install into a
# staging directory stays inside it.
# appliance_sim is not installed: it stands in for the appliance's own peer
# services on a laptop (taking their sockets) and reads its data from the
# source tree.
include(GNUInstallDirs)

# Everything below without a component of its own goes to the daemon's package.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME daemon)

if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(SYSMGT_SYSCONFDIR /etc)
else()
  set(SYSMGT_SYSCONFDIR ${CMAKE_INSTALL_SYSCONFDIR})
endif()
set(SYSMGT_BINDIR ${CMAKE_INSTALL_FULL_BINDIR})

set(_installed channel_manager chanctl dbglog)
if(TARGET chanweb)
  list(APPEND _installed chanweb)
endif()
install(TARGETS ${_installed} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/etc/sysmgt/channel_data_set_vex.json
              ${PROJECT_SOURCE_DIR}/etc/sysmgt/vsrc_data_set.json
              ${PROJECT_SOURCE_DIR}/etc/sysmgt/zixistat_data_set.json
              ${PROJECT_SOURCE_DIR}/etc/sysmgt/srtstat_data_set.json
        DESTINATION ${SYSMGT_SYSCONFDIR}/sysmgt)

# The service files name the installed daemon; the configured copies are also
# what the readiness test reads.
configure_file(${PROJECT_SOURCE_DIR}/etc/systemd/channel_manager.service.in
               ${PROJECT_BINARY_DIR}/etc/channel_manager.service @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/etc/init.d/channel_manager.in
               ${PROJECT_BINARY_DIR}/etc/init.d/channel_manager @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/etc/channel_manager.service DESTINATION lib/systemd/system)
install(PROGRAMS ${PROJECT_BINARY_DIR}/etc/init.d/channel_manager DESTINATION ${SYSMGT_SYSCONFDIR}/init.d)

# ---- Debian packages, one per install component, each named after its architecture ----
# Component "daemon" is the package channel-manager (the daemon and its tools).
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL daemon)
set(CPACK_PACKAGE_NAME channel-manager)
set(CPACK_DEBIAN_DAEMON_PACKAGE_NAME channel-manager)
set(CPACK_PACKAGE_VERSION 1.0.0)
set(CPACK_PACKAGE_CONTACT "Encoder appliance team <appliance@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Absolute destinations (/etc) go into the staging tree, not the build machine.
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(CMAKE_CROSSCOMPILING AND CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  # dpkg-shlibdeps reads the armhf libraries of Debian's multiarch tree.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS /usr/lib/arm-linux-gnueabihf)
endif()
# The init script is the admin's to edit (its level); the daemon package's
# Debian files (conffiles among them) are in DaemonPackage.cmake.
if(IS_ABSOLUTE "${SYSMGT_SYSCONFDIR}")
  set(_initScript ${SYSMGT_SYSCONFDIR}/init.d/channel_manager)
else()
  set(_initScript ${CMAKE_INSTALL_PREFIX}/${SYSMGT_SYSCONFDIR}/init.d/channel_manager)
endif()
include(${CMAKE_CURRENT_LIST_DIR}/DebianDocs.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/DaemonPackage.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/LibraryPackages.cmake)
include(CPack)
