# What `cmake --install` puts where (GNUInstallDirs): velmora and velmora-cli in bin; the
# tools they run in libexec/velmora, where the programs find them relative to their own
# folder; the launcher entry, AppStream metainfo, icons, polkit policy, manual pages and
# bash completion under share. On macOS the application is a bundle instead.
set(VELMORA_APP_ID app.velmora.dataeraser)
set(VELMORA_TOOLS_INSTALL_DIR ${CMAKE_INSTALL_LIBEXECDIR}/velmora)
set(desktop_sources ${CMAKE_SOURCE_DIR}/resources/desktop)
set(desktop_build ${CMAKE_BINARY_DIR}/desktop)

if(APPLE)
  include(${CMAKE_CURRENT_LIST_DIR}/VelmoraBundle.cmake)
  return()
endif()

install(TARGETS velmora velmora-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS srm velmora-diskutil velmora-privileged-helper RUNTIME DESTINATION ${VELMORA_TOOLS_INSTALL_DIR})

# The metainfo carries the version and the day of the build (SOURCE_DATE_EPOCH when set).
string(TIMESTAMP VELMORA_RELEASE_DATE "%Y-%m-%d" UTC)
configure_file(${desktop_sources}/${VELMORA_APP_ID}.metainfo.xml ${desktop_build}/${VELMORA_APP_ID}.metainfo.xml @ONLY)
install(FILES ${desktop_sources}/${VELMORA_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${desktop_build}/${VELMORA_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# Icons: the SVG as it is, and PNGs of the theme's fixed sizes rendered from it at build time.
add_executable(velmora-render-icon ${CMAKE_SOURCE_DIR}/src/iconrender/main.cpp)
target_link_libraries(velmora-render-icon PRIVATE Qt6::Gui Qt6::Svg)
set_target_properties(velmora-render-icon PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${desktop_build})
set(icon_svg ${desktop_sources}/${VELMORA_APP_ID}.svg)
install(FILES ${icon_svg} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
set(desktop_outputs)
foreach(size IN ITEMS 16 24 32 48 64 128 256)
  set(png ${desktop_build}/icons/${size}x${size}/${VELMORA_APP_ID}.png)
  add_custom_command(OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${desktop_build}/icons/${size}x${size}
    COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0
            $<TARGET_FILE:velmora-render-icon> ${icon_svg} ${size} ${png}
    DEPENDS velmora-render-icon ${icon_svg}
    COMMENT "Rendering the ${size}x${size} application icon")
  install(FILES ${png} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  list(APPEND desktop_outputs ${png})
endforeach()

# Manual pages, compressed as Debian wants them (-n: no time stamp, so builds repeat).
foreach(page IN ITEMS velmora.1 velmora-cli.1 velmora-srm.1 velmora-diskutil.8)
  string(REGEX REPLACE ".*\\.([0-9])$" "\\1" section ${page})
  set(compressed ${desktop_build}/man/${page}.gz)
  add_custom_command(OUTPUT ${compressed}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${desktop_build}/man
    COMMAND gzip -9n -c ${CMAKE_SOURCE_DIR}/resources/man/${page} > ${compressed}
    DEPENDS ${CMAKE_SOURCE_DIR}/resources/man/${page}
    VERBATIM)
  install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
  list(APPEND desktop_outputs ${compressed})
endforeach()

install(FILES ${CMAKE_SOURCE_DIR}/resources/completion/velmora-cli
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# The polkit policy names the installed programs by absolute path (pkexec matches on it),
# so it is written at install time for the prefix the install actually uses.
if(IS_ABSOLUTE ${VELMORA_TOOLS_INSTALL_DIR})
  set(tools_dir_at_install ${VELMORA_TOOLS_INSTALL_DIR})
else()
  set(tools_dir_at_install "\${CMAKE_INSTALL_PREFIX}/${VELMORA_TOOLS_INSTALL_DIR}")
endif()
install(CODE "
  set(VELMORA_TOOLS_DIR \"${tools_dir_at_install}\")
  configure_file(\"${CMAKE_SOURCE_DIR}/resources/polkit/org.velmora.dataeraser.policy\"
    \"${desktop_build}/polkit/org.velmora.dataeraser.policy\" @ONLY)
  file(INSTALL \"${desktop_build}/polkit/org.velmora.dataeraser.policy\"
    DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/polkit-1/actions\")
")

# Debian's copyright and changelog files, found by lintian in the package's doc folder.
set(changelog ${desktop_build}/changelog.gz)
add_custom_command(OUTPUT ${changelog}
  COMMAND gzip -9n -c ${CMAKE_SOURCE_DIR}/resources/debian/changelog > ${changelog}
  DEPENDS ${CMAKE_SOURCE_DIR}/resources/debian/changelog
  VERBATIM)
list(APPEND desktop_outputs ${changelog})
install(FILES ${CMAKE_SOURCE_DIR}/resources/debian/copyright ${changelog}
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velmora)

add_custom_target(velmora_desktop_files ALL DEPENDS ${desktop_outputs})
# Everything an install needs built, for `make package` and the install test.
add_custom_target(velmora_installables DEPENDS velmora velmora-cli srm velmora-diskutil velmora-privileged-helper
  velmora_desktop_files)
