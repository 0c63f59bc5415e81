# What `cmake --install` puts where: programs, manual pages, completions, and what a desktop shows of an application. On
# macOS the application is a bundle with everything in it.
include(GNUInstallDirs)
if(VORN_APP AND APPLE)
  set(CMAKE_INSTALL_DATADIR Vorn.app/Contents/Resources)
  set(CMAKE_INSTALL_MANDIR Vorn.app/Contents/Resources/man)
endif()

# @NAMES@ in these files are filled in.
function(vorn_configure input output)
  configure_file(${input} ${PROJECT_BINARY_DIR}/${output} @ONLY)
endfunction()

install(DIRECTORY packaging/licences/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vorn/licences)
install(FILES completions/vornctl.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME vornctl)
install(FILES completions/_vornctl DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES completions/vornctl.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# Without a time stamp, so that the same pages give the same bytes.
set(pages vornctl vorn-bridge)
if(VORN_APP)
  list(APPEND pages vorn)
endif()
foreach(page IN LISTS pages)
  vorn_configure(docs/man/${page}.1 man/${page}.1)
  add_custom_command(OUTPUT man/${page}.1.gz
    COMMAND gzip -9nkf man/${page}.1
    DEPENDS ${PROJECT_BINARY_DIR}/man/${page}.1 WORKING_DIRECTORY ${PROJECT_BINARY_DIR} VERBATIM)
  list(APPEND packed_pages ${PROJECT_BINARY_DIR}/man/${page}.1.gz)
endforeach()
add_custom_target(man ALL DEPENDS ${packed_pages})
install(FILES ${packed_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Vorn's owner has no address on the net yet; where names have to begin with one, this stands for it.
set(VORN_APPLICATION_ID local.vorn.vorn)
vorn_configure(packaging/macos/Info.plist.in macos/Info.plist)

if(VORN_APP AND APPLE)
  # Vorn.app: the application looks for the relay in Helpers, and so does vornctl beside it.
  set_target_properties(vorn PROPERTIES
    OUTPUT_NAME Vorn MACOSX_BUNDLE ON MACOSX_BUNDLE_INFO_PLIST ${PROJECT_BINARY_DIR}/macos/Info.plist)
  set(icon ${PROJECT_SOURCE_DIR}/packaging/macos/Vorn.icns)
  target_sources(vorn PRIVATE ${icon})
  set_source_files_properties(${icon} TARGET_DIRECTORY vorn PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  install(TARGETS vorn BUNDLE DESTINATION .)
  install(TARGETS vornctl vorn-bridge DESTINATION Vorn.app/Contents/Helpers)
  return()
endif()

install(TARGETS vornctl)
# Nobody runs it by hand: it is copied from here to where Claude Code finds it.
install(TARGETS vorn-bridge DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/vorn)
if(VORN_APP)
  install(TARGETS vorn)
  install(FILES packaging/vorn.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  vorn_configure(packaging/vorn.metainfo.xml.in ${VORN_APPLICATION_ID}.metainfo.xml)
  install(FILES ${PROJECT_BINARY_DIR}/${VORN_APPLICATION_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  foreach(size 16 22 24 32 48 64 128 256 512)
    install(FILES packaging/icons/vorn-${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME vorn.png)
  endforeach()
  install(FILES packaging/icons/vorn.svg DESTINATION ${icons}/scalable/apps)
  install(FILES packaging/icons/vorn-symbolic.svg DESTINATION ${icons}/symbolic/apps)
  include(VornPackage)
endif()
