# Removes what the last cmake --install of a build installed.
#
# Usage: cmake -D BUILD=FOLDER -P Uninstall.cmake
set(manifest ${BUILD}/install_manifest.txt)
if(NOT EXISTS ${manifest})
    message(FATAL_ERROR "Nothing is installed: ${manifest} does not exist.")
endif()
# This script runs in the build folder.
if(NOT "$ENV{DESTDIR}" STREQUAL "" AND NOT IS_ABSOLUTE "$ENV{DESTDIR}")
    message(FATAL_ERROR "DESTDIR must be an absolute path.")
endif()
file(STRINGS ${manifest} files)
foreach(path IN LISTS files)
    file(REMOVE $ENV{DESTDIR}${path})
endforeach()

set(folders)
if(EXISTS ${BUILD}/install_folders.txt)
    file(STRINGS ${BUILD}/install_folders.txt folders)
endif()
# Inner folders first. A folder that contains other files stays.
list(SORT folders ORDER DESCENDING)
list(REMOVE_DUPLICATES folders)
foreach(path IN LISTS folders)
    execute_process(COMMAND rmdir $ENV{DESTDIR}${path} ERROR_QUIET)
endforeach()
file(REMOVE ${manifest} ${BUILD}/install_folders.txt)
