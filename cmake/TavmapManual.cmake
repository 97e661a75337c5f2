# Manual pages and completions of shells, made from the built program and installed beside it. What makes them may be
# missing (help2man, Python): then they are left out, and a line says so.
set(TAVMAP_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING "Where zsh looks for completions")
find_program(HELP2MAN help2man)
find_package(Python3 COMPONENTS Interpreter)

# tavmap_made_from_program(<folder> <what> COMMAND ...): a folder that a command fills from the program.
function(tavmap_made_from_program folder what)
  cmake_parse_arguments(ARG "" "" "COMMAND" ${ARGN})
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${folder}.made)
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${CMAKE_CURRENT_BINARY_DIR}/${folder}
    COMMAND ${ARG_COMMAND}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS tavmap ${CMAKE_SOURCE_DIR}/scripts/make-manual ${CMAKE_SOURCE_DIR}/scripts/make-completions
    COMMENT "Writing ${what}" VERBATIM)
  add_custom_target(tavmap_${folder} ALL DEPENDS ${stamp})
endfunction()

if(HELP2MAN)
  tavmap_made_from_program(man "manual pages" COMMAND
    ${CMAKE_SOURCE_DIR}/scripts/make-manual $<TARGET_FILE:tavmap> ${CMAKE_CURRENT_BINARY_DIR}/man ${PROJECT_VERSION})
  install(DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT manual)
else()
  message(STATUS "No help2man: the manual pages are left out")
endif()
if(Python3_FOUND)
  set(completions ${CMAKE_CURRENT_BINARY_DIR}/completions)
  tavmap_made_from_program(completions "completions of shells" COMMAND
    Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/scripts/make-completions $<TARGET_FILE:tavmap> ${completions})
  install(FILES ${completions}/tavmap.bash RENAME tavmap
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT manual)
  install(FILES ${completions}/_tavmap DESTINATION ${TAVMAP_ZSH_COMPLETIONS} COMPONENT manual)
  install(FILES ${completions}/tavmap.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT manual)
else()
  message(STATUS "No Python 3: the completions of shells are left out")
endif()
