# Run by CPack over the files that are about to be packed: Debian wants manual pages and the changelog compressed,
# without names and times, so that equal files make equal packages.
file(GLOB_RECURSE packed ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*)
set(compressed ${packed})
list(FILTER compressed INCLUDE REGEX "/man/man1/[^/]*[.]1$|/doc/tavmap/changelog$")
if(NOT compressed)
  message(FATAL_ERROR "No manual pages and no changelog in ${CPACK_TEMPORARY_INSTALL_DIRECTORY}: install help2man")
endif()
foreach(file IN LISTS compressed)
  execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
