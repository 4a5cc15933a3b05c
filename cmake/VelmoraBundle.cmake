# macOS: velmora.app with the programs it runs (srm, velmora-cli for terminals, and the
# disk-utility tool where it is built) in the bundle's MacOS folder beside the executable,
# where toolPath finds them, and Info.plist carrying the version. macdeployqt adds Qt (README).
set_target_properties(velmora PROPERTIES
  MACOSX_BUNDLE ON
  MACOSX_BUNDLE_BUNDLE_NAME "Velmora Data Eraser"
  MACOSX_BUNDLE_GUI_IDENTIFIER app.velmora.dataeraser
  MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
  MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION}
  MACOSX_BUNDLE_LONG_VERSION_STRING ${PROJECT_VERSION}
  MACOSX_BUNDLE_COPYRIGHT "Velmora")
set(bundle_programs srm velmora-cli)
if(TARGET velmora-diskutil)
  list(APPEND bundle_programs velmora-diskutil)
endif()
# Copied into the bundle after each build, so the bundle in the build folder runs as the
# installed one does; the tests keep running the copies in bin/.
add_dependencies(velmora ${bundle_programs})
foreach(program IN LISTS bundle_programs)
  add_custom_command(TARGET velmora POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:${program}> $<TARGET_BUNDLE_CONTENT_DIR:velmora>/MacOS/)
endforeach()
install(TARGETS velmora BUNDLE DESTINATION .)
install(TARGETS ${bundle_programs} RUNTIME DESTINATION velmora.app/Contents/MacOS)
