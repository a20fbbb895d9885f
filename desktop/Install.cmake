# Installation as a Linux desktop application, and the Debian package.
#   cmake --install build [--prefix /usr]     programs, library, manual, desktop entry, MIME types, icons
#   cd build && cpack -G DEB                  aquilonix_<version>_<arch>.deb
include(GNUInstallDirs)

# The installed programs find the engine library beside them under any prefix.
set_target_properties(aquilonix-tool PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
install(TARGETS Aquilonix LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/engine/Aquilonix.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/aquilonix)
install(TARGETS aquilonix-tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET aquilonix)
  set_target_properties(aquilonix PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS aquilonix RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(TARGETS AquilonixSound LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/aquilonix)
endif()

# The user manual; the program looks for it at ../share/doc/aquilonix/manual.
set(AQX_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/aquilonix)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/doc/manual DESTINATION ${AQX_DOCDIR}
        FILES_MATCHING PATTERN "*.md")
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${AQX_DOCDIR})

set(AQX_DESKTOP ${PROJECT_SOURCE_DIR}/desktop)
install(FILES ${AQX_DESKTOP}/aquilonix.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${AQX_DESKTOP}/aquilonix-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME aquilonix.xml)
install(FILES ${AQX_DESKTOP}/icons/aquilonix.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${AQX_DESKTOP}/icons/application-x-aquilonix.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/mimetypes)
foreach(size 16 32 48 64 128 256)
  install(FILES ${AQX_DESKTOP}/icons/aquilonix-${size}.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME aquilonix.png)
endforeach()

# A plain `cmake --install` into a live prefix refreshes the desktop's
# caches; a package build (DESTDIR) leaves that to the package triggers.
install(CODE [[
  if(NOT DEFINED ENV{DESTDIR} OR "$ENV{DESTDIR}" STREQUAL "")
    foreach(tool update-mime-database update-desktop-database gtk-update-icon-cache)
      find_program(found ${tool})
      if(found)
        if(tool STREQUAL "update-mime-database")
          execute_process(COMMAND ${found} "${CMAKE_INSTALL_PREFIX}/share/mime" OUTPUT_QUIET ERROR_QUIET)
        elseif(tool STREQUAL "update-desktop-database")
          execute_process(COMMAND ${found} "${CMAKE_INSTALL_PREFIX}/share/applications" OUTPUT_QUIET ERROR_QUIET)
        else()
          execute_process(COMMAND ${found} -q -t "${CMAKE_INSTALL_PREFIX}/share/icons/hicolor" OUTPUT_QUIET ERROR_QUIET)
        endif()
      endif()
      unset(found CACHE)
    endforeach()
  endif()
]])

set(CPACK_PACKAGE_NAME aquilonix)
set(CPACK_PACKAGE_VENDOR "Aquilonix")
set(CPACK_PACKAGE_CONTACT "Aquilonix developers <aquilonix@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Measurement and diagnostics station for hydro-turbine generator sets")
set(CPACK_PACKAGE_DESCRIPTION "Records up to 32 sensors of a hydro unit through a USB acquisition module
and analyses the recordings: signal, spectrum, cascade of spectra, shaft orbit,
rotor form, protocols in spreadsheet workbooks. Russian user interface and manual.")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://localhost/aquilonix")
# The shared libraries come from dpkg-shlibdeps; the platform plugin that
# draws the windows and the MIME and desktop tools are not linked, so they
# are named here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/engine)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, shared-mime-info, desktop-file-utils")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, libreoffice-calc | gnumeric, xdg-utils")
set(CPACK_STRIP_FILES ON)
include(CPack)
