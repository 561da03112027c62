# Run by CPack after it has made the packages (CPACK_POST_BUILD_SCRIPTS, on
# the files of CPACK_PACKAGE_FILES): a package that activates the ldconfig
# trigger loses the postinst and postrm that CPack writes into every package
# with a library under /usr/lib, scripts that do nothing but call ldconfig.
# dpkg runs ldconfig once for the trigger; the calls would only repeat it per
# package. A maintainer script with any other command is kept.
find_program(_dpkgDeb dpkg-deb)

# TRUE in ${result} when the script ${file} runs no command but ldconfig.
function(_sysmgt_only_ldconfig file result)
  file(STRINGS ${file} _lines)
  set(_commands "")
  foreach(_line IN LISTS _lines)
    string(STRIP "${_line}" _line)
    # The frame of CPack's script: the interpreter line, set -e, one if on $1.
    if(_line STREQUAL "" OR _line MATCHES "^#" OR _line STREQUAL "set -e" OR _line MATCHES "^if \\[.*\\]; then$"
       OR _line STREQUAL "fi")
      continue()
    endif()
    list(APPEND _commands "${_line}")
  endforeach()
  if(_commands STREQUAL "ldconfig")
    set(${result} TRUE PARENT_SCOPE)
  else()
    set(${result} FALSE PARENT_SCOPE)
  endif()
endfunction()

# The names of the maintainer scripts of the control directory ${control} that
# only call ldconfig, in ${result}, when the package activates the trigger.
function(_sysmgt_redundant_scripts control result)
  set(_redundant "")
  if(EXISTS ${control}/triggers)
    file(STRINGS ${control}/triggers _triggers REGEX "^activate-noawait ldconfig$")
    foreach(_script postinst postrm)
      if(_triggers AND EXISTS ${control}/${_script})
        _sysmgt_only_ldconfig(${control}/${_script} _only)
        if(_only)
          list(APPEND _redundant ${_script})
        endif()
      endif()
    endforeach()
  endif()
  set(${result} "${_redundant}" PARENT_SCOPE)
endfunction()

foreach(_deb IN LISTS CPACK_PACKAGE_FILES)
  if(NOT _deb MATCHES "\\.deb$")
    continue()
  endif()
  if(NOT _dpkgDeb)
    message(FATAL_ERROR "dpkg-deb is needed to finish ${_deb}")
  endif()
  set(_tree ${_deb}.tree)
  file(REMOVE_RECURSE ${_tree})
  file(MAKE_DIRECTORY ${_tree})
  execute_process(COMMAND ${_dpkgDeb} --control ${_deb} ${_tree}/control RESULT_VARIABLE _failed)
  if(_failed)
    message(FATAL_ERROR "dpkg-deb could not read the control files of ${_deb}")
  endif()
  _sysmgt_redundant_scripts(${_tree}/control _redundant)
  if(_redundant)
    execute_process(COMMAND ${_dpkgDeb} --raw-extract ${_deb} ${_tree}/package RESULT_VARIABLE _failed)
    foreach(_script IN LISTS _redundant)
      file(REMOVE ${_tree}/package/DEBIAN/${_script})
    endforeach()
    if(NOT _failed)
      execute_process(COMMAND ${_dpkgDeb} --root-owner-group --build ${_tree}/package ${_deb} OUTPUT_QUIET
                      RESULT_VARIABLE _failed)
    endif()
    if(_failed)
      message(FATAL_ERROR "dpkg-deb could not make ${_deb} again without ${_redundant}")
    endif()
    message(STATUS "${_deb}: without ${_redundant} (the ldconfig trigger runs ldconfig)")
  endif()
  file(REMOVE_RECURSE ${_tree})
endforeach()
