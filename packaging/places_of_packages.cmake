# Read by cpack before it lays out a package: the time that everything in it carries, and where the systems that take
# the package keep what each puts elsewhere.
include(${CMAKE_CURRENT_LIST_DIR}/moment.cmake)
find_moment(${CMAKE_CURRENT_LIST_DIR}/.. moment)
set(ENV{SOURCE_DATE_EPOCH} ${moment})

if(CPACK_GENERATOR STREQUAL "DEB")
  set(ENV{IFWATCH_EXTCAP_DIR} lib/${CPACK_ARCHITECTURE_TRIPLET}/wireshark/extcap)
  set(ENV{IFWATCH_ZSH_DIR} share/zsh/vendor-completions)
  set(ENV{IFWATCH_DEBIAN_VERSION} ${CPACK_PACKAGE_VERSION})
elseif(CPACK_GENERATOR STREQUAL "RPM")
  set(ENV{IFWATCH_EXTCAP_DIR} lib64/wireshark/extcap)
  set(ENV{IFWATCH_ZSH_DIR} share/zsh/site-functions)
  unset(ENV{IFWATCH_DEBIAN_VERSION})
endif()
