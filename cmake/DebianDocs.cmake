# The documentation every Debian package of this tree carries: the copyright
# and the tree's changelog under /usr/share/doc/<package>/. All five packages
# come from this one tree, so each carries the same changelog (a native
# package's name for it is changelog.gz). Texts in etc/debian/.
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

# Installs the copyright and the changelog into the package of install component <component>.
function(sysmgt_debian_docs component package)
  install(FILES ${_staged}/changelog.gz ${_debian}/copyright DESTINATION share/doc/${package} COMPONENT ${component})
endfunction()
