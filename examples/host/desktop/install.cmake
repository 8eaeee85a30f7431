# cmake --install BUILD --component editor: the programs, their plug-in, and what a desktop knows them by.
#
# The programs look for data and plug-ins beside themselves, so all of it has a folder of its own, with links to it.
include(GNUInstallDirs)
set(editor_home ${CMAKE_INSTALL_LIBEXECDIR}/ondrel-editor)
set(editor_programs ondrel-editor ondrel-render ondrel-devicetest)

file(RELATIVE_PATH home_to_libraries /prefix/${editor_home} /prefix/${CMAKE_INSTALL_LIBDIR})
set_target_properties(${editor_programs} PROPERTIES
  INSTALL_RPATH "$ORIGIN/${home_to_libraries}" INSTALL_RPATH_USE_LINK_PATH ON)
install(TARGETS ${editor_programs} RUNTIME DESTINATION ${editor_home} COMPONENT editor EXCLUDE_FROM_ALL)
install(DIRECTORY ${ONDREL_DATA_DIR}/ ${CMAKE_CURRENT_LIST_DIR}/../../mode/ DESTINATION ${editor_home}/data
  COMPONENT editor EXCLUDE_FROM_ALL FILES_MATCHING PATTERN "*.svg" PATTERN "*.css" PATTERN "*.icc")

file(RELATIVE_PATH programs_to_home /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${editor_home})
install(CODE "
  set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
  file(MAKE_DIRECTORY \"\${folder}\")
  foreach(program ondrel-editor ondrel-render)
    file(CREATE_LINK \"${programs_to_home}/\${program}\" \"\${folder}/\${program}\" SYMBOLIC)
  endforeach()" COMPONENT editor EXCLUDE_FROM_ALL)

set(desktop ${CMAKE_CURRENT_LIST_DIR}/org.ondrel.Editor)
install(FILES ${desktop}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT editor EXCLUDE_FROM_ALL)
install(FILES ${desktop}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT editor EXCLUDE_FROM_ALL)
install(FILES ${desktop}.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
  COMPONENT editor EXCLUDE_FROM_ALL)
install(FILES ${desktop}.mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME org.ondrel.Editor.xml
  COMPONENT editor EXCLUDE_FROM_ALL)
