# The daemon package's Debian files (component "daemon", package
# channel-manager): copyright, changelog (DebianDocs.cmake) and manual pages
# under /usr/share, the maintainer scripts (service user and group,
# registration with the init system) and the configuration files. Texts in
# etc/debian/. lintian finds nothing to override (the device leg runs it).
sysmgt_debian_docs(daemon channel-manager)

set(_pages channel_manager.8 chanctl.1 dbglog.1)
if(TARGET chanweb)
  list(APPEND _pages chanweb.1)
endif()
foreach(_page ${_pages})
  string(REGEX REPLACE ".*\\.([0-9])$" "\\1" _section ${_page})
  _sysmgt_gzip(${_debian}/man/${_page} ${_staged}/${_page}.gz)
  install(FILES ${_staged}/${_page}.gz DESTINATION share/man/man${_section})
endforeach()

# Configuration files: an operator's edit survives an upgrade. The factory
# datasets are only read by the daemon (it stores channels under /data/settings,
# and the service cannot write /etc), so all four are conffiles.
set(_conffiles "${_initScript}\n")
foreach(_dataset channel_data_set_vex vsrc_data_set zixistat_data_set srtstat_data_set)
  if(IS_ABSOLUTE "${SYSMGT_SYSCONFDIR}")
    string(APPEND _conffiles "${SYSMGT_SYSCONFDIR}/sysmgt/${_dataset}.json\n")
  else()
    string(APPEND _conffiles "${CMAKE_INSTALL_PREFIX}/${SYSMGT_SYSCONFDIR}/sysmgt/${_dataset}.json\n")
  endif()
endforeach()
file(WRITE ${_staged}/conffiles "${_conffiles}")
set(CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_EXTRA
    ${_staged}/conffiles ${_debian}/postinst ${_debian}/prerm ${_debian}/postrm)
set(CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Channel Manager Maintainers <channel-manager@sysmgt-appliance.de>")
set(CPACK_DEBIAN_DAEMON_PACKAGE_SECTION admin)
# Each package's description has its synopsis in its first line (no summary
# common to all packages is set); CPack indents the lines after it.
set(CPACK_DEBIAN_DAEMON_DESCRIPTION "Channel manager daemon of the encoder appliance, with chanctl and dbglog
The channel manager owns the two encoding channels of the video encoder
appliance: it loads their data, configures, plays and stops them through
the mediator, probes their targets and reports their state as events.

The package holds the daemon with its init script and systemd unit (the
daemon runs as the system user chanmgr in the group sysmgt), the factory
datasets, and the tools chanctl (commands and events on the command line)
and dbglog (the debug log reader).")
# The postinst makes the service user with adduser.
if(CPACK_DEBIAN_DAEMON_PACKAGE_DEPENDS)
  string(APPEND CPACK_DEBIAN_DAEMON_PACKAGE_DEPENDS ", adduser")
else()
  set(CPACK_DEBIAN_DAEMON_PACKAGE_DEPENDS "adduser")
endif()
