# The package that `cpack -G DEB` makes. scripts/package builds and checks it.
set(documents "${CMAKE_CURRENT_SOURCE_DIR}/linux/debian")
configure_file("${documents}/changelog" "${CMAKE_CURRENT_BINARY_DIR}/changelog" COPYONLY)
vantora_gzip(changelog "${CMAKE_CURRENT_BINARY_DIR}/changelog")
install(FILES "${documents}/copyright" "${changelog}"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/vantora")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantora)
set(CPACK_PACKAGE_VENDOR "The Vantora developers")
set(CPACK_PACKAGE_CONTACT "The Vantora developers <vantora@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "system monitor that lives in the panel")
set(CPACK_PACKAGE_DESCRIPTION
"One small picture in the panel: a row of narrow modules of two lines with CPU,
network, battery, temperatures, fans, the power adapter, and the usage quotas
of Codex CLI and Claude Code. A settings window arranges it.
.
vantora-print gives the same readings to terminals, tmux, i3bar and waybar.
The texts of all three programs are in Brazilian Portuguese.")
set(CPACK_PRE_BUILD_SCRIPTS "${documents}/strip.cmake")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Folders of the package are everybody's to read, whatever the umask.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so that no program names it as a library of its own.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libfontconfig1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Without them the programs start, but with another system's letters, without links that
# open, or with the toolkit's own dialogs, and in English.
string(JOIN ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "default-dbus-session-bus | dbus-session-bus"
  "fonts-dejavu-core"
  "hicolor-icon-theme"
  "qt6-translations-l10n"
  "qt6-wayland"
  "qt6-xdgdesktopportal-platformtheme"
  "xdg-utils")
# GNOME shows no status item without it.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS gnome-shell-extension-appindicator)
include(CPack)
