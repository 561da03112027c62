# The daemon package's Debian files (component "daemon", package
# channel-manager): copyright, changelog and manual pages under /usr/share,
# the maintainer scripts (service user and group, registration with the init
# system) and the configuration files. Texts in etc/debian/. lintian finds
# nothing to override (the device leg runs it).
set(_debian ${PROJECT_SOURCE_DIR}/etc/debian)
set(_staged ${PROJECT_BINARY_DIR}/etc/debian)
find_program(GZIP_PROGRAM gzip REQUIRED)

# gzip -9n: no name, no time stamp, so two builds give the same bytes.
function(_sysmgt_gzip source target)
  execute_process(COMMAND ${GZIP_PROGRAM} -9nc ${source} OUTPUT_FILE ${target} RESULT_VARIABLE _failed)
  if(_failed)
    message(FATAL_ERROR "gzip ${source} failed")
  endif()
endfunction()

configure_file(${_debian}/changelog.in ${_staged}/changelog @ONLY)
_sysmgt_gzip(${_staged}/changelog ${_staged}/changelog.gz)
install(FILES ${_staged}/changelog.gz ${_debian}/copyright DESTINATION share/doc/channel-manager)

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
# The synopsis is CPACK_PACKAGE_DESCRIPTION_SUMMARY; CPack indents these lines.
set(CPACK_DEBIAN_DAEMON_DESCRIPTION "The channel manager owns the two encoding channels of the video encoder
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
