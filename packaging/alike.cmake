# Run by cpack when all files of a package are in place. Who makes the package, and when, must not show in it: all get
# the one time that places_of_packages.cmake has set, and directories a mode that no umask has a part in.
foreach(command "-exec;touch;-h;-d;@$ENV{SOURCE_DATE_EPOCH};{};+" "-type;d;-exec;chmod;0755;{};+")
  execute_process(COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY} ${command} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
