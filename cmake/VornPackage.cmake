# The Debian package: tools/package builds it with CPack.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vorn)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# Vorn's owner is named nowhere yet. tools/package names whoever builds the package.
set(CPACK_PACKAGE_CONTACT "Whoever built this package <nobody@vorn.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "tells whether you will hit a limit of your Claude Code plan")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"At the rate you use your Claude Code Pro or Max plan, will you hit a limit
before it resets, and should you speed up or ease off? Vorn asks Claude Code
how much of each limit is used, remembers the answers, and says where the
present pace leads: in the tray with a popover, a dashboard and notices, and
in a terminal, a status bar or a prompt (vornctl).
.
Everything stays on this machine: Vorn opens no network connection.")

set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What the programs link, and what the windows load by name.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qml6-module-qtquick, qml6-module-qtqml-workerscript, qml6-module-qtcharts")
# On Wayland Qt needs a plug-in of its own.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS qt6-wayland)

set(CPACK_VORN_ADAPT ${PROJECT_SOURCE_DIR}/packaging/debian/adapt)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/adapt.cmake)
include(CPack)
