# The target uninstall removes the files that the last cmake --install copied and the folders that it
# created. With DESTDIR it removes them from the same staging root.
#
# Include this before any other installation rule.
add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -D BUILD=${PROJECT_BINARY_DIR} -P ${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake
    VERBATIM)

# The folders in share/ have the layout of the installation.
file(GLOB_RECURSE data_paths LIST_DIRECTORIES true RELATIVE ${PROJECT_SOURCE_DIR}/share
    CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/share/*)
set(installed_folders ${CMAKE_INSTALL_BINDIR} libexec/quillet ${CMAKE_INSTALL_MANDIR}/man1
    ${CMAKE_INSTALL_DOCDIR}/pictures ${CMAKE_INSTALL_DOCDIR}/sample
    ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
    # Debian's folder, below /usr.
    ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
foreach(path IN LISTS data_paths)
    if(IS_DIRECTORY ${PROJECT_SOURCE_DIR}/share/${path})
        list(APPEND installed_folders ${CMAKE_INSTALL_DATADIR}/${path})
    endif()
endforeach()

# CMake records the files that it installs. Record the folders, too, before it creates them.
install(CODE "
    set(installed_folders \"${installed_folders}\")
    set(record \"${PROJECT_BINARY_DIR}/install_folders.txt\")
")
install(CODE [[
    get_filename_component(root "$ENV{DESTDIR}/" ABSOLUTE)
    foreach(folder IN LISTS installed_folders)
        set(path ${CMAKE_INSTALL_PREFIX}/${folder})
        while(NOT path STREQUAL "/" AND NOT EXISTS ${root}${path})
            file(APPEND ${record} "${path}\n")
            get_filename_component(path ${path} DIRECTORY)
        endwhile()
    endforeach()
]])
