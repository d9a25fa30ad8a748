# The page around its data, as texts in the program: its modules joined, and the library that draws.
include(VeloraNpm)
find_program(NODE NAMES node nodejs REQUIRED)
set(page ${PROJECT_SOURCE_DIR}/page)
set(modules ${CMAKE_CURRENT_BINARY_DIR}/node_modules)
set(rollup ${modules}/@rollup/wasm-node/dist/bin/rollup)
velora_npm_modules(${page} ${rollup})

set(view chart clock colours columns csv echarts element form head history lanes main plot print recorded statuses table
  text time-window timeline values)
list(TRANSFORM view PREPEND ${page}/view/)
list(TRANSFORM view APPEND .js)
set(licences ${modules}/echarts/NOTICE ${modules}/echarts/LICENSE ${modules}/echarts/licenses/LICENSE-d3
  ${modules}/zrender/LICENSE ${modules}/tslib/LICENSE.txt)
set(script ${CMAKE_CURRENT_BINARY_DIR}/page.js)
set(frame ${CMAKE_CURRENT_BINARY_DIR}/Frame.cpp)
add_custom_command(
  OUTPUT ${frame}
  # A circle of imports is a warning.
  COMMAND ${NODE} ${rollup} ${page}/view/main.js --file ${script} --format iife --no-indent --failAfterWarnings
  COMMAND ${NODE} ${page}/embed.js ${frame} ${modules}/echarts/dist/echarts.min.js ${script} ${licences}
  DEPENDS ${page}/embed.js ${page}/view/page.html ${page}/view/page.css ${view} ${rollup}
  COMMENT "Joining the modules of the page"
  VERBATIM)
target_sources(velora-ts-verbs PRIVATE ${frame})
