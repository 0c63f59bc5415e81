# Run by CPack between installing the files and packing them.
execute_process(
  COMMAND ${CPACK_VORN_ADAPT} ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr ${CPACK_PACKAGE_CONTACT}
  COMMAND_ERROR_IS_FATAL ANY)
