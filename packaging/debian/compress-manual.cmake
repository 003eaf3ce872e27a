# Debian has pages of the manual compressed. Run by cpack before it packs what it has installed.
file(GLOB_RECURSE pages ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.1)
list(FILTER pages INCLUDE REGEX "/man1/")
if(pages)
  execute_process(COMMAND gzip -9n ${pages} COMMAND_ERROR_IS_FATAL ANY)
endif()
