# Install layout and the Debian package (`make package`).
# Installed programs find their data in ../share/krldv beside bin/ and korel5 finds libkrldv
# through a RUNPATH relative to itself, so an unpacked package works from any folder.
# libkrldv is private to korel5: in the multiarch folder's krldv/, where ldconfig never looks.
if(CMAKE_LIBRARY_ARCHITECTURE)
  set(KRLDV_PRIVATE_LIB_DIR lib/${CMAKE_LIBRARY_ARCHITECTURE}/krldv)
else()
  set(KRLDV_PRIVATE_LIB_DIR lib/krldv)
endif()
set(KRLDV_SHARE_DIR share/krldv)
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

install(TARGETS krldv RUNTIME DESTINATION bin)
install(DIRECTORY ${KRLDV_DATA_DIR}/ DESTINATION ${KRLDV_SHARE_DIR} PATTERN README.md EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/package/krldv.bash-completion
        DESTINATION share/bash-completion/completions RENAME krldv)
install(FILES ${PROJECT_SOURCE_DIR}/package/copyright DESTINATION share/doc/krldv)

# Man pages from the same text as --help; the programs run from the build tree here.
set(KRLDV_MANPAGE ${PROJECT_SOURCE_DIR}/package/manpage.sh)
set(KRLDV_MAN_DIR ${PROJECT_BINARY_DIR}/man)
add_custom_command(OUTPUT ${KRLDV_MAN_DIR}/krldv.1.gz
  COMMAND ${CMAKE_COMMAND} -E make_directory ${KRLDV_MAN_DIR}
  COMMAND ${CMAKE_COMMAND} -E env KRLDV_DATA_DIR=${KRLDV_DATA_DIR}
          sh ${KRLDV_MANPAGE} $<TARGET_FILE:krldv> krldv "convert, inspect and edit device programmer files"
          ${PROJECT_VERSION} ${KRLDV_MAN_DIR}/krldv.1.gz
  DEPENDS krldv ${KRLDV_MANPAGE} VERBATIM)
set(KRLDV_MAN_PAGES ${KRLDV_MAN_DIR}/krldv.1.gz)

if(KRLDV_BUILD_GUI)
  set_target_properties(korel5 PROPERTIES INSTALL_RPATH "$ORIGIN/../${KRLDV_PRIVATE_LIB_DIR}")
  install(TARGETS korel5 RUNTIME DESTINATION bin)
  install(TARGETS libkrldv LIBRARY DESTINATION ${KRLDV_PRIVATE_LIB_DIR} NAMELINK_SKIP)
  install(FILES ${PROJECT_SOURCE_DIR}/package/korel5.desktop DESTINATION share/applications)
  install(FILES ${PROJECT_SOURCE_DIR}/package/korel5.svg DESTINATION share/icons/hicolor/scalable/apps)
  install(FILES ${PROJECT_SOURCE_DIR}/package/krldv-mime.xml DESTINATION share/mime/packages RENAME krldv.xml)
  add_custom_command(OUTPUT ${KRLDV_MAN_DIR}/korel5.1.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${KRLDV_MAN_DIR}
    COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen KRLDV_DATA_DIR=${KRLDV_DATA_DIR}
            sh ${KRLDV_MANPAGE} $<TARGET_FILE:korel5> korel5 "buffer editor of the KOREL5 device programmer"
            ${PROJECT_VERSION} ${KRLDV_MAN_DIR}/korel5.1.gz
    DEPENDS korel5 ${KRLDV_MANPAGE} VERBATIM)
  list(APPEND KRLDV_MAN_PAGES ${KRLDV_MAN_DIR}/korel5.1.gz)
endif()
add_custom_target(manpages ALL DEPENDS ${KRLDV_MAN_PAGES})
install(FILES ${KRLDV_MAN_PAGES} DESTINATION share/man/man1)

# A native package's changelog, compressed as Debian wants it.
set(KRLDV_CHANGELOG ${PROJECT_BINARY_DIR}/package/changelog.gz)
add_custom_command(OUTPUT ${KRLDV_CHANGELOG}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/package
  COMMAND sh -c "gzip -9n <\"$0\" >\"$1\"" ${PROJECT_SOURCE_DIR}/package/changelog ${KRLDV_CHANGELOG}
  DEPENDS ${PROJECT_SOURCE_DIR}/package/changelog VERBATIM)
add_custom_target(changelog ALL DEPENDS ${KRLDV_CHANGELOG})
install(FILES ${KRLDV_CHANGELOG} DESTINATION share/doc/krldv)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME krldv)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "krldv developers <krldv@krldv.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "buffer editor and file tools for the KOREL5 device programmer")
set(CPACK_PACKAGE_DESCRIPTION "korel5 edits the buffer of a device programmer: it loads, views, edits and
saves Intel HEX, Motorola S-record, TI-TXT, JEDEC, SVF, STAPL and binary files
through the ranges and layout of a chosen device. krldv converts, checks,
fills, searches, splits and joins the same files on the command line.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src/gui)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS flashrom)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
