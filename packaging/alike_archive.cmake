# Run by cpack when a package is made. In a Debian package it leaves the umask of who makes it, which Debian's own tool
# does not, so that one makes it again of what is in it.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(content ${CPACK_TEMPORARY_DIRECTORY}/content)
  foreach(package ${CPACK_PACKAGE_FILES})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${content} COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND chmod 0755 ${content} ${content}/DEBIAN COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${content} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${content})
  endforeach()
endif()
