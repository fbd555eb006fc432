# Installing Vocabrix like any Linux application: the four programs into bin/, and the files
# that make the desktop know it (entry, document type, icons, AppStream metainfo, man pages).
# Paths follow GNUInstallDirs so a distribution can relocate them. The application's own
# resources (language table, bundle types, interface texts) are compiled in and need no files.
include(GNUInstallDirs)

# The reverse-domain id shared by the desktop entry, the icon, the metainfo and the program.
set(VOCABRIX_APP_ID org.vocabrix.Vocabrix)
vocabrix_add_version_header()
foreach(program ${VOCABRIX_PROGRAMS})
  if(TARGET ${program})
    # The interface tools are found beside the program that runs them, so all share bin/.
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

if(NOT TARGET vocabrix)
  return()
endif()

set(desktop_dir ${CMAKE_SOURCE_DIR}/resources/desktop)
install(FILES ${desktop_dir}/${VOCABRIX_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_SOURCE_DIR}/resources/vocabrix-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
        RENAME ${VOCABRIX_APP_ID}.xml)
install(FILES ${desktop_dir}/${VOCABRIX_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
# Software centres show the release notes of the metainfo: a new version needs its entry there.
file(READ ${desktop_dir}/${VOCABRIX_APP_ID}.metainfo.xml metainfo)
if(NOT metainfo MATCHES "<release version=\"${PROJECT_VERSION}\"")
  message(WARNING "resources/desktop/${VOCABRIX_APP_ID}.metainfo.xml has no <release> for version ${PROJECT_VERSION}")
endif()
install(DIRECTORY ${CMAKE_SOURCE_DIR}/resources/icons/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)

# Man pages: the version filled in, then compressed as Debian wants them when gzip is at hand.
find_program(VOCABRIX_GZIP gzip)
set(man_outputs)
foreach(program ${VOCABRIX_PROGRAMS})
  set(source ${CMAKE_SOURCE_DIR}/man/${program}.1.in)
  if(NOT EXISTS ${source})
    continue()
  endif()
  set(page ${CMAKE_BINARY_DIR}/man/${program}.1)
  configure_file(${source} ${page} @ONLY)
  if(VOCABRIX_GZIP)
    add_custom_command(OUTPUT ${page}.gz
      COMMAND ${VOCABRIX_GZIP} -9 -n -f -k ${page}
      DEPENDS ${page} VERBATIM)
    list(APPEND man_outputs ${page}.gz)
  else()
    list(APPEND man_outputs ${page})
  endif()
endforeach()
add_custom_target(vocabrix_man ALL DEPENDS ${man_outputs})
install(FILES ${man_outputs} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

include(${CMAKE_SOURCE_DIR}/cmake/Package.cmake)
