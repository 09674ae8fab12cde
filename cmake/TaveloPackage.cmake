# SPDX-License-Identifier: MIT
#
# The Debian package: `cpack` in a tree that was configured with the preset "package".

set(TAVELO_MAINTAINER "The Tavelo developers <developers@tavelo.github.io>" CACHE STRING
    "Name and address of who answers for the package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavelo)
set(CPACK_PACKAGE_VENDOR "The Tavelo developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${TAVELO_MAINTAINER}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${TAVELO_HOMEPAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "desktop diary over a folder of plain Markdown files")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# Files that name the prefix are to name the one on the user's machine.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What the programs need beyond the libraries that they are linked with: windows on Wayland, and pictures in the
# formats that cameras write.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-wayland, qt6-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "qt6-translations-l10n, fonts-noto-core | fonts-dejavu-core, fonts-noto-cjk, fonts-noto-color-emoji, xdg-user-dirs")
# Below the summary, which cpack puts first.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Tavelo keeps one file for each day of the year, with one section in it for
each year. You write today's entry and read beside it what you wrote on this
date in other years.
.
The folder is the user's own: any program may read it and any tool may sync
it. What another machine wrote into a file is merged, never overwritten, and
no saved text is lost when the disk, a sync tool or the power fails.
.
The package also has tavelo-cli, which appends to, searches and checks the
same diary from a terminal.")

# The files that every Debian package has.
set(changelog ${CMAKE_BINARY_DIR}/changelog.Debian)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date --utc --rfc-email --date=${TAVELO_RELEASE_DATE}
  OUTPUT_VARIABLE TAVELO_CHANGELOG_DATE
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file(Resources/debian/changelog.in ${changelog} @ONLY)
install(
  CODE "
  execute_process(COMMAND gzip -9 --no-name --keep --force \"${changelog}\" COMMAND_ERROR_IS_FATAL ANY)
  foreach(page tavelo tavelo-cli)
    set(page \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/share/man/man1/\${page}.1\")
    if(EXISTS \"\${page}\")
      execute_process(COMMAND gzip -9 --no-name --force \"\${page}\" COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endforeach()")
install(FILES ${changelog}.gz DESTINATION share/doc/tavelo)
install(FILES Resources/debian/copyright DESTINATION share/doc/tavelo)
install(FILES Resources/debian/lintian-overrides DESTINATION share/lintian/overrides RENAME tavelo)

include(CPack)
