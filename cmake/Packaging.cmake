# Installation rules and the two packages: a Debian package, and a relocatable archive that
# installs for one user under ~/.local (share/orlet/install-user.sh).
include(GNUInstallDirs)
# Installing (and so packaging) builds ORLET alone, not the tests and benchmarks.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY TRUE)

set(ORLET_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)
set(ORLET_GENERATED ${PROJECT_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${ORLET_GENERATED})
file(WRITE ${ORLET_GENERATED}/version "${PROJECT_VERSION}\n")

# Debian wants the changelog and the manual compressed without timestamps.
foreach(doc changelog orlet.1)
  add_custom_command(OUTPUT ${ORLET_GENERATED}/${doc}.gz
    COMMAND gzip -9nc ${ORLET_PACKAGING}/${doc} > ${ORLET_GENERATED}/${doc}.gz
    DEPENDS ${ORLET_PACKAGING}/${doc} VERBATIM)
endforeach()
add_custom_target(orlet_docs ALL DEPENDS ${ORLET_GENERATED}/changelog.gz ${ORLET_GENERATED}/orlet.1.gz)

install(TARGETS orlet RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${ORLET_PACKAGING}/orlet.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${ORLET_PACKAGING}/fr.orlet.Orlet.metainfo.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${ORLET_PACKAGING}/icons/orlet.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 16 24 32 48 64 128 256)
  install(FILES ${ORLET_PACKAGING}/icons/orlet-${size}.png
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME orlet.png)
endforeach()
install(FILES ${ORLET_PACKAGING}/copyright ${ORLET_GENERATED}/changelog.gz
  DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${ORLET_GENERATED}/orlet.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${ORLET_GENERATED}/version DESTINATION ${CMAKE_INSTALL_DATADIR}/orlet)
install(PROGRAMS ${ORLET_PACKAGING}/install-user.sh DESTINATION ${CMAKE_INSTALL_DATADIR}/orlet)

# The signed apt repository the Debian package takes its new versions from (scripts/release.sh
# apt): its address and the publisher's key as a binary keyring (scripts/release.sh apt-key). The
# package installs the key and, from its postinst, the sources entry that names it (signed-by).
set(ORLET_APT_REPOSITORY "" CACHE STRING "Address of the signed apt repository of releases")
set(ORLET_APT_KEYRING "" CACHE FILEPATH "Binary OpenPGP keyring of that repository's key")
if(ORLET_APT_REPOSITORY AND ORLET_APT_KEYRING)
  configure_file(${ORLET_PACKAGING}/orlet.sources.in ${ORLET_GENERATED}/orlet.sources @ONLY)
  install(FILES ${ORLET_GENERATED}/orlet.sources DESTINATION ${CMAKE_INSTALL_DATADIR}/orlet/apt)
  install(FILES ${ORLET_APT_KEYRING} DESTINATION ${CMAKE_INSTALL_DATADIR}/keyrings
    RENAME orlet-archive-keyring.gpg)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${ORLET_PACKAGING}/postinst ${ORLET_PACKAGING}/postrm)
elseif(ORLET_APT_REPOSITORY OR ORLET_APT_KEYRING)
  message(FATAL_ERROR "ORLET_APT_REPOSITORY and ORLET_APT_KEYRING go together")
endif()

set(CPACK_PACKAGE_NAME orlet)
set(CPACK_PACKAGE_VENDOR "ORLET")
set(CPACK_PACKAGE_CONTACT "ORLET developers <orlet@orlet.fr>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "live, clickable miniature of a display beside Capture One")
set(CPACK_PACKAGE_DESCRIPTION "ORLET keeps a live, clickable miniature of one display in a
floating panel beside the photo editor Capture One: a click on the miniature
becomes a real click on the display. It lives in the notification area of an
X11 session and updates itself from signed packages.")
set(CPACK_PACKAGE_FILE_NAME "orlet-${PROJECT_VERSION}-Linux")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The archive is relocatable: its own top folder, installed by its script.
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/PackagingPerGenerator.cmake)
set(CPACK_GENERATOR "DEB;TGZ")
include(CPack)
