# The install tree and the package: what desktops, software centres, man and
# dpkg read, checked by their own tools, and the game played as installed.

# The files of an install, each checked by the tool that reads it.
add_test(NAME desktop_entry_valid
         COMMAND desktop-file-validate ${CMAKE_BINARY_DIR}/data/${QUORBLE_APP_ID}.desktop)
add_test(NAME metainfo_valid COMMAND appstreamcli validate --no-net
         ${CMAKE_BINARY_DIR}/data/${QUORBLE_APP_ID}.metainfo.xml)
# groff exits with 0 even when it warns: any word from it is a failure.
add_test(NAME manual_page_clean COMMAND groff -wall -man -z ${CMAKE_BINARY_DIR}/data/quorble.6)
set_tests_properties(desktop_entry_valid manual_page_clean PROPERTIES FAIL_REGULAR_EXPRESSION ".")

# The package, built apart from the one `make package` leaves in the build
# folder, then checked and installed into a private root.
set(TEST_PACKAGE_DIR ${CMAKE_BINARY_DIR}/package-test)
add_test(NAME package_build COMMAND bash -c
         "rm -rf \"$0\" && cpack -G DEB -B \"$0\" --config \"$1\" >/dev/null && ls \"$0\"/quorble_*.deb"
         ${TEST_PACKAGE_DIR} ${CMAKE_BINARY_DIR}/CPackConfig.cmake)
set_tests_properties(package_build PROPERTIES FIXTURES_SETUP package TIMEOUT 300)
add_test(NAME package_contents COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/package_contents.sh
         ${TEST_PACKAGE_DIR} ${QUORBLE_APP_ID})
add_test(NAME package_lintian COMMAND bash -c "lintian --pedantic --fail-on error,warning,pedantic \"$0\"/quorble_*.deb"
         ${TEST_PACKAGE_DIR})
add_test(NAME installed_game_end_to_end COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/e2e_installed.sh
         ${TEST_PACKAGE_DIR} ${PROJECT_VERSION})
set_tests_properties(package_contents package_lintian installed_game_end_to_end
                     PROPERTIES FIXTURES_REQUIRED package)
set_tests_properties(installed_game_end_to_end PROPERTIES TIMEOUT 240)
