# The time that packages and what is in them carry: that of the commit, so that whoever makes them again gets the same
# octets. SOURCE_DATE_EPOCH goes before it; sources without a commit, such as those of an archive, have the time of
# their changelog.
function(find_moment source moment)
  if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
    set(${moment} $ENV{SOURCE_DATE_EPOCH} PARENT_SCOPE)
    return()
  endif()
  find_program(GIT git)
  set(seconds "")
  if(GIT)
    # The sources may be somebody else's, as where only root can make the package.
    execute_process(COMMAND ${GIT} -c safe.directory=* -C ${source} log -1 --format=%ct
      OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endif()
  if(NOT seconds MATCHES "^[0-9]+$")
    file(TIMESTAMP ${source}/CHANGELOG.md seconds "%s" UTC)
  endif()
  set(${moment} ${seconds} PARENT_SCOPE)
endfunction()
