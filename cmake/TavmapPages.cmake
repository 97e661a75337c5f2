# Style and script of pages, from web/, as a C++ file. The script wants Node and the packages of web/ (npm ci); without
# them pages are made without a script, and a line says so.
find_program(NODE NAMES node nodejs)

# tavmap_page_assets(<output>)
function(tavmap_page_assets output)
  set(web ${CMAKE_SOURCE_DIR}/web)
  set(embed ${CMAKE_SOURCE_DIR}/cmake/EmbedPages.cmake)
  set(made ${CMAKE_CURRENT_BINARY_DIR}/pages)
  file(STRINGS ${web}/style/order.txt style)
  list(TRANSFORM style PREPEND ${web}/style/)
  set(script "")
  if(NODE AND EXISTS ${web}/node_modules/esbuild)
    set(style ${made}/report.css)
    set(script ${made}/report.js)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${web}/src/*.ts ${web}/style/*)
    add_custom_command(OUTPUT ${style} ${script}
      COMMAND ${NODE} ${web}/build.mjs ${made} report
      DEPENDS ${sources} ${web}/build.mjs ${web}/licences.mjs ${web}/package-lock.json ${web}/tsconfig.json
      COMMENT "Bundling the script of pages" VERBATIM)
  else()
    message(STATUS "No Node, or no packages in web/: reports are made without interaction")
  endif()
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} "-DSTYLE=${style}" -DSCRIPT=${script} -DOUT=${output} -P ${embed}
    DEPENDS ${style} ${script} ${embed}
    COMMENT "Putting style and script of pages into a source file" VERBATIM)
  set_source_files_properties(${output} PROPERTIES COMPILE_OPTIONS -Wno-overlength-strings
    SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# tavmap_workbench_files(<output>): the page of the workbench, and what its saved scenes need, as a C++ file for workbench/page_files.h; empty without Node
# or the packages of web/.
function(tavmap_workbench_files output)
  set(web ${CMAKE_SOURCE_DIR}/web)
  set(embed ${CMAKE_SOURCE_DIR}/cmake/EmbedFiles.cmake)
  set(made ${CMAKE_CURRENT_BINARY_DIR}/pages)
  set(files "")
  if(NODE AND EXISTS ${web}/node_modules/@niivue/niivue)
    set(files workbench.html workbench.js workbench.css favicon.svg report.js report.css)
    list(TRANSFORM files PREPEND ${made}/)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${web}/src/*.ts ${web}/style/* ${web}/page/* ${web}/licences/*)
    add_custom_command(OUTPUT ${files}
      COMMAND ${NODE} ${web}/build.mjs ${made} workbench report
      DEPENDS ${sources} ${web}/build.mjs ${web}/licences.mjs ${web}/package-lock.json ${web}/tsconfig.json
      COMMENT "Bundling the page of the workbench" VERBATIM)
  else()
    message(STATUS "No Node, or no packages in web/: the program is built without the page of its workbench")
  endif()
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} "-DFILES=${files}" -DOUT=${output} -P ${embed}
    DEPENDS ${files} ${embed}
    COMMENT "Putting the page of the workbench into a source file" VERBATIM)
  set_source_files_properties(${output} PROPERTIES COMPILE_OPTIONS -Wno-overlength-strings
    SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
