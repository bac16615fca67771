# Installation and the Debian package: bundles and program side by side in one folder, a link in bin.
set(home lib/rovescio)
set(engine_bundle ${CMAKE_BINARY_DIR}/NotationEngine.bundle)

install(TARGETS rovescio RUNTIME DESTINATION ${home})
install(TARGETS rovescio_engine LIBRARY DESTINATION ${home}/NotationEngine.bundle/Contents/MacOS)
install(TARGETS load_code RUNTIME DESTINATION ${home}/NotationEngine.bundle/Contents/Helpers)
install(FILES ${engine_bundle}/Contents/Info.plist DESTINATION ${home}/NotationEngine.bundle/Contents)
install(TARGETS rovescio_plugin LIBRARY DESTINATION ${home}/Rovescio.bundle/Contents/MacOS)
install(FILES ${PLUGIN_BUNDLE}/Contents/Info.plist DESTINATION ${home}/Rovescio.bundle/Contents)
install(DIRECTORY ${PLUGIN_BUNDLE}/Contents/Resources DESTINATION ${home}/Rovescio.bundle/Contents)
if(NOT APPLE)
  install(TARGETS rovescio_platform
    LIBRARY DESTINATION ${home}/Rovescio.bundle/Contents/Frameworks NAMELINK_SKIP)
endif()
install(CODE "
  file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
  file(CREATE_LINK ../lib/rovescio/rovescio \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/rovescio\" SYMBOLIC)")

find_program(GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/rovescio.1.gz
  COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/docs/rovescio.1 > ${CMAKE_BINARY_DIR}/rovescio.1.gz
  DEPENDS docs/rovescio.1)
add_custom_target(rovescio_manual ALL DEPENDS ${CMAKE_BINARY_DIR}/rovescio.1.gz)
install(FILES ${CMAKE_BINARY_DIR}/rovescio.1.gz DESTINATION share/man/man1)
install(FILES LICENSE DESTINATION share/doc/rovescio RENAME copyright)
install(FILES README.md docs/user-guide.md DESTINATION share/doc/rovescio)
install(DIRECTORY examples DESTINATION share/doc/rovescio)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME rovescio)
set(CPACK_PACKAGE_VENDOR "The Rovescio authors")
set(CPACK_PACKAGE_CONTACT "The Rovescio authors <rovescio@localhost.localdomain>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Compositional transformations for notated music
 Rovescio transposes selected music of MusicXML scores, through a plug-in for
 notation programs and a strict host that runs it from the command line.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${CMAKE_BINARY_DIR} ${engine_bundle}/Contents/MacOS ${PLUGIN_BUNDLE}/Contents/MacOS)
include(CPack)
