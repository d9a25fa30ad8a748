# The page of "velora-ts report": its files, and the library that draws, as texts in the program.
include(VeloraNpm)
set(page ${PROJECT_SOURCE_DIR}/page)
set(modules ${CMAKE_CURRENT_BINARY_DIR}/node_modules)
set(echarts ${modules}/echarts/dist/echarts.min.js)
velora_npm_modules(${page} ${echarts})

set(scripts text data time-window chart lanes timeline plot history columns table csv head print main)
list(TRANSFORM scripts PREPEND ${page}/view/)
list(TRANSFORM scripts APPEND .js)
set(licences ${modules}/echarts/NOTICE ${modules}/echarts/LICENSE ${modules}/echarts/licenses/LICENSE-d3
  ${modules}/zrender/LICENSE ${modules}/tslib/LICENSE.txt)
list(JOIN scripts "," joined_scripts)
list(JOIN licences "," joined_licences)
set(parts ${CMAKE_CURRENT_BINARY_DIR}/PageParts.cpp)
add_custom_command(
  OUTPUT ${parts}
  COMMAND ${CMAKE_COMMAND} -P ${CMAKE_CURRENT_LIST_DIR}/embed.cmake ${parts} pageFrame=${page}/view/page.html
    pageStyle=${page}/view/page.css pageScript=${joined_scripts} pageLibrary=${echarts} pageLicences=${joined_licences}
  DEPENDS ${CMAKE_CURRENT_LIST_DIR}/embed.cmake ${page}/view/page.html ${page}/view/page.css ${scripts} ${echarts}
  COMMENT "Putting the page into velora-ts"
  VERBATIM)
target_sources(velora-ts-verbs PRIVATE ${parts})
