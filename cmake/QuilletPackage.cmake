# The Debian package: what cmake --install installs, under /usr. script/package makes it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillet)
set(CPACK_PACKAGE_VENDOR "The Quillet Project")
set(CPACK_PACKAGE_CONTACT "The Quillet Project <maintainers@quillet.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "put numbered labels on the pages of a report")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://www.quillet.example)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Quillet marks what matters on the pages of a report. Page images are imported,
and numbered labels are placed on them with the mouse; labels are edited,
dragged and renumbered, pages named and put into order. The result is one image
for each page, or a PDF report with header lines and page numbers.
.
The package also holds quillet-cli, a tool for the command line that makes
projects from images, exports, checks, mends and renumbers them, and exchanges
labels with spreadsheets.")
# The libraries are found by looking at the programs. The fonts are not a matter of taste: labels and
# reports are drawn with them, and are to look the same on each machine.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-liberation")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# No maintainer scripts: the desktop's caches are brought up to date by the triggers of those who own
# them (desktop-file-utils, hicolor-icon-theme, shared-mime-info, man-db).

include(CPack)
