# Read by cpack for each generator: the archive is laid out from its own top folder, the
# Debian package under /usr.
if(CPACK_GENERATOR STREQUAL "TGZ")
  set(CPACK_PACKAGING_INSTALL_PREFIX "/")
  set(CPACK_SET_DESTDIR OFF)
  set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
endif()
