# Read by cpack before it lays out a package: where the systems that take the package keep what each puts elsewhere.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(ENV{IFWATCH_EXTCAP_DIR} lib/${CPACK_ARCHITECTURE_TRIPLET}/wireshark/extcap)
  set(ENV{IFWATCH_ZSH_DIR} share/zsh/vendor-completions)
elseif(CPACK_GENERATOR STREQUAL "RPM")
  set(ENV{IFWATCH_EXTCAP_DIR} lib64/wireshark/extcap)
  set(ENV{IFWATCH_ZSH_DIR} share/zsh/site-functions)
endif()
