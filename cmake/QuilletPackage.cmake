# The Debian package, with the files of cmake --install below /usr. Use script/package to build it.
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
"Quillet puts numbered labels on the pages of a report. Import images or
PDFs, add labels with a right click, edit, move and renumber them, and put
the pages into order. Quillet exports one image for each page, or a PDF
report with header lines and page numbers.
.
The package also contains the command-line tool quillet-cli, which creates,
checks, recovers, renumbers and exports projects, and exchanges labels with
spreadsheets.")
# CPack finds the libraries that the programs need. The fonts are a dependency because labels and
# reports must look the same on every machine; the others read PDFs, TIFF and WebP.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-liberation, poppler-utils, qt5-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# No maintainer scripts: the triggers of desktop-file-utils, hicolor-icon-theme, shared-mime-info and
# man-db update the caches.

include(CPack)
