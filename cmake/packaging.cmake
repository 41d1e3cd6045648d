# The installed layout under /usr and the Debian package (cpack -G DEB).
#
#   bin/quilldex, bin/quilldex-cli, libexec/quilldex/quilldex-cli-images
#   share/quilldex/            the delivered catalog and help page, the copy
#                              each user's application directory is seeded from
#   share/applications/, share/metainfo/, share/icons/hicolor/   menu entry
#   share/man/man1/            quilldex(1), quilldex-cli(1)
#
# Nothing is written outside these at install or removal: a user's own
# application directory (~/.local/share/quilldex) is theirs alone.

include(GNUInstallDirs)

set(QD_APP_ID example.quilldex.Quilldex)
set(QD_DESKTOP_DIR ${CMAKE_SOURCE_DIR}/data/desktop)
set(QD_GENERATED ${CMAKE_BINARY_DIR}/generated)

# The icon set: the drawn SVG, and PNGs rendered from it at the sizes the
# menus and docks ask for.
find_program(RSVG_CONVERT_PROGRAM rsvg-convert REQUIRED)
set(QD_ICON_SIZES 16 22 24 32 48 64 128 256)
set(QD_ICON_PNGS)
foreach(size ${QD_ICON_SIZES})
  set(png ${QD_GENERATED}/icons/${size}x${size}/quilldex.png)
  add_custom_command(
    OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${QD_GENERATED}/icons/${size}x${size}
    COMMAND ${RSVG_CONVERT_PROGRAM} -w ${size} -h ${size} -o ${png} ${QD_DESKTOP_DIR}/quilldex.svg
    DEPENDS ${QD_DESKTOP_DIR}/quilldex.svg
    VERBATIM)
  list(APPEND QD_ICON_PNGS ${png})
  install(FILES ${png} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()

# The manual pages, compressed as Debian keeps them. quilldex-cli(1) is
# written from the program's own help, so it lists every command.
find_program(GZIP_PROGRAM gzip REQUIRED)
set(QD_MAN_CLI ${QD_GENERATED}/man/quilldex-cli.1)
add_custom_command(
  OUTPUT ${QD_MAN_CLI}.gz ${QD_GENERATED}/man/quilldex.1.gz
  COMMAND ${CMAKE_COMMAND} -E make_directory ${QD_GENERATED}/man
  COMMAND ${CMAKE_SOURCE_DIR}/scripts/make_cli_manpage $<TARGET_FILE:quilldex-cli>
          ${PROJECT_VERSION} ${QD_MAN_CLI}
  COMMAND ${GZIP_PROGRAM} -9nf ${QD_MAN_CLI}
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/data/man/quilldex.1
          ${QD_GENERATED}/man/quilldex.1
  COMMAND ${GZIP_PROGRAM} -9nf ${QD_GENERATED}/man/quilldex.1
  DEPENDS quilldex-cli ${CMAKE_SOURCE_DIR}/scripts/make_cli_manpage
          ${CMAKE_SOURCE_DIR}/data/man/quilldex.1
  VERBATIM)
add_custom_target(desktop_files ALL
  DEPENDS ${QD_ICON_PNGS} ${QD_MAN_CLI}.gz ${QD_GENERATED}/man/quilldex.1.gz)

install(TARGETS quilldex quilldex-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# The command line's picture program, which quilldex-cli hands picture
# commands on to; not a command of its own.
install(TARGETS quilldex-cli-images RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/quilldex)
# The files a new per-user application directory is seeded from
# (see resolve_application_directory): the pristine catalog, never the
# build tree's working copy, and the help page.
install(FILES ${QD_PRISTINE_CATALOG} ${CMAKE_SOURCE_DIR}/data/qdhelp.htm
        DESTINATION ${CMAKE_INSTALL_DATADIR}/quilldex)
# The help page's pictures of each tab (scripts/help-shots).
install(DIRECTORY ${CMAKE_SOURCE_DIR}/data/help DESTINATION ${CMAKE_INSTALL_DATADIR}/quilldex)
install(FILES ${QD_DESKTOP_DIR}/${QD_APP_ID}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${QD_DESKTOP_DIR}/${QD_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${QD_DESKTOP_DIR}/quilldex.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${QD_MAN_CLI}.gz ${QD_GENERATED}/man/quilldex.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Runtime pieces the programs load by name, which no linker entry shows:
# GraphicsMagick (opened by its soname for older picture types), the SQLite
# driver, the window-system and image-format plugins, and the GStreamer
# elements that play the slide show music. The GraphicsMagick package is
# the one that owns the library found at configure time.
set(QD_RUNTIME_PACKAGES
  libqt6sql6-sqlite qt6-qpa-plugins qt6-image-formats-plugins
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good)
get_filename_component(QD_GM_DIR ${GRAPHICSMAGICK_LIBRARY} DIRECTORY)
get_filename_component(QD_GM_FILE ${QD_GM_DIR}/${QD_GM_SONAME} REALPATH)
execute_process(COMMAND dpkg-query -S ${QD_GM_FILE}
                OUTPUT_VARIABLE QD_GM_OWNER ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
if(QD_GM_OWNER MATCHES "^([^:, ]+)")
  list(PREPEND QD_RUNTIME_PACKAGES ${CMAKE_MATCH_1})
else()
  message(WARNING "No Debian package owns ${QD_GM_FILE}; the package will not depend on it")
endif()
list(JOIN QD_RUNTIME_PACKAGES ", " QD_RUNTIME_DEPENDS)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quilldex)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Quilldex")
set(CPACK_PACKAGE_CONTACT "Quilldex <support@quilldex.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "catalog image files and publish them")
set(CPACK_PACKAGE_DESCRIPTION
    "Quilldex gathers image files into a working list, keeps a title, a description\n"
    "and a catalog name for each in its catalog database, and makes web pages,\n"
    "indexes, thumbnails, resized copies, slide shows and printed sheets from them.")
string(JOIN "" CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${QUILLDEX_VENDOR_HOST})
# The libraries the programs link, with versions, from dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS ${QD_RUNTIME_DEPENDS})
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, xdg-utils, gstreamer1.0-libav")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "sane-utils")
include(CPack)
