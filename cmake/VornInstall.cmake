# What `cmake --install` puts where: the program, the relay, the man page, and completions where each shell looks for them.
include(GNUInstallDirs)

install(TARGETS vornctl)
if(VORN_APP)
  install(TARGETS vorn)
endif()
# Nobody runs it by hand: vornctl copies it to where Claude Code finds it.
install(TARGETS vorn-bridge DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/vorn)
install(FILES docs/man/vornctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES completions/vornctl.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME vornctl)
install(FILES completions/_vornctl DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES completions/vornctl.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
