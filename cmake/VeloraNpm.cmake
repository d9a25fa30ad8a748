# velora_npm_modules(FOLDER MISSING): installs the packages of FOLDER/package-lock.json below the current build folder
# while CMake configures, except those that only checks need. Sets MISSING to why they are not there, or to nothing.
#
# What is installed stays as long as the lock file stays the same. What failed is tried again at each configure. A
# network that answers nothing is waited for only once, and again with VELORA_PAGE=ON.
function(velora_npm_modules folder missing)
  # Each copy makes CMake configure again when its original changes.
  foreach(file package.json package-lock.json)
    configure_file(${folder}/${file} ${file} COPYONLY NO_SOURCE_PERMISSIONS)
  endforeach()
  set(${missing} "" PARENT_SCOPE)
  foreach(program NODE NPM)
    if(NOT EXISTS "${${program}}")  # what an earlier configure found can be gone
      unset(${program} CACHE)
    endif()
  endforeach()
  find_program(NODE NAMES node nodejs)
  find_program(NPM npm)
  if(NOT NODE)
    set(${missing} "Node.js was not found" PARENT_SCOPE)
    return()
  endif()

  file(READ ${folder}/package.json package)
  string(JSON needed GET "${package}" engines node)  # such as ">=18"
  string(REGEX MATCH "[0-9]+" needed "${needed}")
  execute_process(COMMAND ${NODE} --version OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE)  # such as v18.2.0
  string(REGEX REPLACE "^v" "" version "${version}")
  if(version VERSION_LESS needed)
    set(${missing} "${NODE} is version '${version}', expected ${needed} or newer" PARENT_SCOPE)
    return()
  endif()

  # npm removes node_modules before it installs, and with it the mark of an earlier success.
  set(mark ${CMAKE_CURRENT_BINARY_DIR}/node_modules/.whole)
  file(SHA256 ${folder}/package-lock.json lock)
  if(EXISTS ${mark})
    file(READ ${mark} installed)
    if(installed STREQUAL lock)
      return()
    endif()
  endif()
  if(NOT NPM)
    set(${missing} "npm was not found" PARENT_SCOPE)
    return()
  endif()
  if(VELORA_NPM_UNANSWERED AND NOT VELORA_PAGE STREQUAL ON)
    set(${missing} "npm waited in vain for an answer; -D VELORA_PAGE=ON waits once more" PARENT_SCOPE)
    return()
  endif()
  message(STATUS "Installing the npm packages of ${folder}")
  set(log ${CMAKE_CURRENT_BINARY_DIR}/npm.log)
  set(retries 0)
  if(VELORA_PAGE STREQUAL ON)
    set(retries 2)
  endif()
  string(TIMESTAMP begun %s UTC)
  execute_process(
    COMMAND ${NPM} ci --omit=dev --ignore-scripts --prefer-offline --no-audit --no-fund --no-update-notifier
      --fetch-timeout=10000 --fetch-retries=${retries}
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    TIMEOUT 120
    RESULT_VARIABLE result
    OUTPUT_FILE ${log}
    ERROR_FILE ${log})
  string(TIMESTAMP ended %s UTC)
  math(EXPR seconds "${ended} - ${begun}")
  if(result EQUAL 0)
    unset(VELORA_NPM_UNANSWERED CACHE)
    file(WRITE ${mark} ${lock})
    return()
  endif()
  if(seconds GREATER 5)
    set(VELORA_NPM_UNANSWERED TRUE CACHE INTERNAL "npm waited for a network that did not answer")
  endif()
  file(READ ${log} said)
  string(REGEX MATCH "code [A-Z0-9_]+" code "${said}")  # such as "npm error code ENOTFOUND"
  if(code)
    set(code " with ${code}")
  endif()
  set(${missing} "npm failed${code} after ${seconds} s: see ${log}" PARENT_SCOPE)
endfunction()
