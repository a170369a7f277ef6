# The Debian package, made by `make package` (cpack) from the install rules.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorble)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${QUORBLE_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "audio dice game for blind players")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Debian's tools check what a package ships: unstripped binaries and group
# writable folders are errors there, whatever the builder's umask.
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${QUORBLE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries come from the binary itself; the voices are data that no
# library names.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS espeak-ng-data)
# Only --speech=dispatcher needs a daemon; the library alone comes with the
# dependencies found from the binary.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS speech-dispatcher)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The summary above is the first line; cpack indents these and turns the
# blank line into the paragraph mark.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Quorble is a dice game played wholly by ear, made for blind players: five
dice, up to three rolls a turn and a score board of fourteen rows. Every
prompt, die and score is spoken through espeak-ng, every action is one key,
and short sounds mark rolls, selections and five of a kind.

One to nine players share one keyboard, each with a voice and speech rate of
their own. Games can be saved and taken up again, and each finished game is
logged to a text file.")

include(CPack)
