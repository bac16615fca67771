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

# What a Debian package must say about itself; the texts are taken from where the project has them.
find_program(GZIP gzip REQUIRED)
set(documents)
foreach(document docs/rovescio.1 packaging/changelog)
  get_filename_component(name ${document} NAME)
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/${name}.gz
    COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/${document} > ${CMAKE_BINARY_DIR}/${name}.gz
    DEPENDS ${document})
  list(APPEND documents ${CMAKE_BINARY_DIR}/${name}.gz)
endforeach()
add_custom_target(rovescio_documents ALL DEPENDS ${documents})
file(READ packaging/changelog changelog LIMIT 100)
if(NOT changelog MATCHES "^rovescio \\(${PROJECT_VERSION}\\) ")
  message(FATAL_ERROR "packaging/changelog does not begin with version ${PROJECT_VERSION}")
endif()
file(READ LICENSE license)
string(REGEX MATCH "Copyright \\(c\\) ([^\n]+)\n+(.*[^\n])" matched "${license}")
set(COPYRIGHT_HOLDERS "${CMAKE_MATCH_1}")
string(REPLACE "\n\n" "\n.\n" LICENSE_TEXT "${CMAKE_MATCH_2}")
string(REPLACE "\n" "\n " LICENSE_TEXT "${LICENSE_TEXT}")
configure_file(packaging/copyright.in ${CMAKE_BINARY_DIR}/copyright @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS packaging/changelog LICENSE)

install(FILES ${CMAKE_BINARY_DIR}/rovescio.1.gz DESTINATION share/man/man1)
install(FILES ${CMAKE_BINARY_DIR}/changelog.gz ${CMAKE_BINARY_DIR}/copyright DESTINATION share/doc/rovescio)
install(FILES README.md docs/user-guide.md DESTINATION share/doc/rovescio)
install(DIRECTORY examples DESTINATION share/doc/rovescio)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME rovescio)
set(CPACK_PACKAGE_VENDOR "The Rovescio authors")
set(CPACK_PACKAGE_CONTACT "The Rovescio authors <maintainers@rovescio.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Rovescio transposes, inverts and reverses selected music of MusicXML scores,
makes MIDI files of it and plays it. A plug-in for notation programs does the
work; it comes with a strict host that runs it from the command line.")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "fluidsynth, fluid-soundfont-gm")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${CMAKE_BINARY_DIR} ${engine_bundle}/Contents/MacOS ${PLUGIN_BUNDLE}/Contents/MacOS)
include(CPack)
