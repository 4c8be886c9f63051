# What a package, or `cmake --install`, puts where. The manuals install themselves
# (NimbrelManuals.cmake).
set(bindir ${CMAKE_INSTALL_FULL_BINDIR})
configure_file(packaging/desktop/com.nimbrel.Nimbrel.service.in com.nimbrel.Nimbrel.service @ONLY)

install(TARGETS nimbrel nimbrelctl)
install(FILES packaging/man/nimbrel.1 packaging/man/nimbrelctl.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completion/nimbrelctl
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# The desktop: application list, D-Bus activation, software centres, icon, file managers' menus.
install(FILES packaging/desktop/com.nimbrel.Nimbrel.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_BINARY_DIR}/com.nimbrel.Nimbrel.service
        DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/services)
install(FILES packaging/desktop/com.nimbrel.Nimbrel.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES resources/icons/NSApplicationIcon.svg RENAME com.nimbrel.Nimbrel.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES packaging/desktop/nemo/com.nimbrel.Nimbrel.nemo_action
        DESTINATION ${CMAKE_INSTALL_DATADIR}/nemo/actions)
install(PROGRAMS packaging/desktop/dolphin/com.nimbrel.Nimbrel.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/kio/servicemenus)
